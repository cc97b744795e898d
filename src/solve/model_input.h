// Reading the Model's Text matrices into the numeric arrays of a solve.
#pragma once

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

}  // namespace ovaro
