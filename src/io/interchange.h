// The input files of the two older batch solvers, QLP (".qlp") and VELD (".vld"): reading them
// into a new Model and writing a Model out as them.
//
// Both formats begin with a header of whole numbers (the sizes and a few switches), then the
// model's acronym and name on a line each, a line of settings, and one block per matrix: its
// name, its row and column counts, then its cells row after row. The system equations travel as
// one block, "WDCBA", that holds the system matrices side by side; "END" closes the file. The
// layout is described for users in docs/interchange_formats.md. A writer and its reader are
// exact inverses for the sizes, forms, settings and every cell's number; labels and the
// description are not carried.
//
// Every import echoes what it read to a debug file: the header words under their title lines,
// then each matrix under its name.
#pragma once

#include <string>
#include <string_view>

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro {

enum class InputFormat { Qlp, Veld };

// "QLP" or "VELD".
std::string_view formatName(InputFormat format);

// A QLP file that announces more state variables than this asks whether to go on.
inline constexpr int kQlpLargeStateCount = 2000;

// Reads the bytes of a QLP or VELD file into a new model and, on success, replaces `model` with it
// and returns 1. Returns 0, leaving `model` as it was, when the file is refused (a time-varying C,
// No to the question on a very large state vector) or cannot be understood; the latter is
// explained in a message that names the line and the field. `debug` (nullptr for none) receives
// the echo. A VELD import ends with "Importation Completed".
int readInputBytes(InputFormat format, std::string_view bytes, Model& model, DebugFile* debug,
                   Prompter& prompter);
// The same for the file at `path`; 0 without a message when the file cannot be read at all (the
// caller says "Could not read file %s!").
int readInputFile(InputFormat format, const std::string& path, Model& model, DebugFile* debug,
                  Prompter& prompter);

// The model as a QLP or VELD file.
std::string serializeInput(InputFormat format, const Model& model);
// Writes it to `path` (the old file replaced only once the new one is whole); 1 on success.
int writeInputFile(InputFormat format, const std::string& path, const Model& model);

// The text a cell travels as in the whitespace-separated files: the cell itself when it is a
// single token, otherwise the shortest text of its number (an empty cell travels as "0").
std::string cellToken(std::string_view cell);

}  // namespace ovaro
