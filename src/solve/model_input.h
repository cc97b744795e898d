// Reading the Model's Text matrices into the numeric arrays of a solve.
#pragma once

#include <string_view>

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/arrays.h"

namespace ovaro {

// The Model's matrix as numbers in a rows x (clo..chi) array: cell (i, j) goes to
// (i + 1, clo + j). Cells the Text matrix does not have read as 0 and cells beyond the array are
// left out, so a solve never reads or writes outside its arrays whatever the Model holds.
Mat readModelMatrix(const Model& model, MatrixId id, int rows, int clo, int chi);
// The same for an integer table (ITHN).
IMat readModelIntMatrix(const Model& model, MatrixId id, int rows, int cols);

// The solvers' horizon: one less than the Model's count of period columns.
inline int solverPeriods(const Model& model) {
  return model.dims.nt.value - 1;
}

// The opening of the debug file of an OLF solve and of the Monte Carlo runs: the heading with the
// model's acronym and name, then the sizes n, m, l, np and the solvers' horizon. Whether the file
// is still whole.
int writeDebugHeading(DebugFile& file, std::string_view heading, const Model& model);

}  // namespace ovaro
