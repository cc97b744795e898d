// The input file of the PC edition of the VELD solver: a text file of CR LF lines holding the
// model acronym, the sizes, two lines of switch words, and the matrices as sparse blocks.
//
// The PC edition takes only some forms (quadratic tracking, Z time varying, W terminal different,
// Lambda constant, desired paths time varying) and was built with small fixed array sizes; the
// export refuses the first, warns about the second and writes on. A model without observation
// variables is given one per state, in the Model as well, because the PC edition always filters.
// The layout is described in docs/interchange_formats.md.
#pragma once

#include <optional>
#include <string>

#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro {

// The checks, warnings and content of the export. nullopt (after a "Warning!") when the model's
// forms are not those the PC edition requires. Sets ny to n when it is 0.
std::optional<std::string> veldpcContent(Model& model, Prompter& prompter);

// Writes the VELDPC file at `path` and ends with "VELDPC input file written."; returns 1. Returns
// 0 when the forms are refused or the file cannot be written whole (the old file, if any, is then
// left as it was; the caller reports the failure).
int writeVeldpcFile(const std::string& path, Model& model, Prompter& prompter);

}  // namespace ovaro
