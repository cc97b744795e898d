#include "solve/model_input.h"

#include <algorithm>

#include "model/conversion.h"

namespace ovaro {

Mat readModelMatrix(const Model& model, MatrixId id, int rows, int clo, int chi) {
  Mat out = mat2(1, rows, clo, chi);
  const TextMatrix* t = model.matrix(id);
  if (t == nullptr) return out;
  const int r = std::min(rows, t->rows());
  const int c = std::min(chi - clo + 1, t->cols());
  for (int i = 0; i < r; ++i)
    for (int j = 0; j < c; ++j) out(i + 1, clo + j) = toDouble(t->cell(i, j));
  return out;
}

IMat readModelIntMatrix(const Model& model, MatrixId id, int rows, int cols) {
  IMat out = imat2(1, rows, 1, cols);
  const TextMatrix* t = model.matrix(id);
  if (t == nullptr) return out;
  const int r = std::min(rows, t->rows());
  const int c = std::min(cols, t->cols());
  for (int i = 0; i < r; ++i)
    for (int j = 0; j < c; ++j) out(i + 1, j + 1) = toInt(t->cell(i, j));
  return out;
}

int writeDebugHeading(DebugFile& file, std::string_view heading, const Model& model) {
  file.writeTitle(heading, model.acronym, model.name);
  const DebugSize sizes[] = {{" State Variables, n ", model.dims.n.value},
                             {" Control Variables, m ", model.dims.m.value},
                             {" Exogenous Variables, l ", model.dims.l.value},
                             {" Uncertain Parameters, np ", model.dims.np.value},
                             {" Time Periods, nt ", solverPeriods(model)}};
  file.writeSizes(sizes);
  return file.ok();
}

}  // namespace ovaro
