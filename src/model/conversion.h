// Conversion of the Model's texts to numbers, and of Text matrices to numeric arrays.
//
// Cells are converted only where a solver, an export or a dump needs the number. The conversion
// is the plain decimal one: leading blanks are skipped, an optional sign and the longest valid
// number are read, and text that is not a number reads as 0. It does not depend on the locale.
#pragma once

#include <string_view>

#include "model/text_matrix.h"
#include "numeric/arrays.h"

namespace ovaro {

// The decimal number at the start of `text` ("1.0E-06", " -2", "3abc" -> 3), 0 when none.
double toDouble(std::string_view text);
// The decimal integer at the start of `text`, 0 when none; values beyond the 32-bit range are
// clamped to it.
int toInt(std::string_view text);

// Cell (i, j) to element (i + 1, j + 1): a 1-based numeric matrix of the same shape.
Mat toMat(const TextMatrix& t);
// Cell (i, j) to element (i + 1, j): rows from 1, one column per period from 0.
Mat toPeriodMat(const TextMatrix& t);
// Column 0 of a Text vector to a 1-based vector.
Vec toVec(const TextMatrix& t);
// Cell (i, j) to element (i + 1, j + 1) of a 1-based integer matrix (index tables such as ITHN).
IMat toIMat(const TextMatrix& t);

}  // namespace ovaro
