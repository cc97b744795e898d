#include "io/matrix_import.h"

#include <algorithm>

#include "io/token_reader.h"
#include "model/conversion.h"
#include "model/model_file.h"
#include "model/safe_file.h"

namespace ovaro {

MatrixImport importMatrixTokens(std::string_view bytes, int columns, TextMatrix& target) {
  MatrixImport r;
  r.cells = target.rows() * target.cols();
  if (columns < 1) {
    r.problem = "The number of columns in the imported matrix must be at least 1.";
    return r;
  }
  TextMatrix filled = target;
  TokenReader in(bytes);
  int position = 0;
  for (int c0 = 0; c0 < target.cols(); c0 += columns) {
    const int c1 = std::min(target.cols(), c0 + columns);
    for (int i = 0; i < target.rows(); ++i)
      for (int j = c0; j < c1; ++j) {
        const std::optional<std::string_view> t = in.token();
        if (!t) {
          r.ok = true;
          target = std::move(filled);
          return r;
        }
        ++position;
        if (t->size() > static_cast<std::size_t>(kCellChars)) {
          r.filled = 0;
          r.problem = "Element " + std::to_string(position) + " of the file (row " +
                      std::to_string(i + 1) + ", column " + std::to_string(j + 1) + "), \"" +
                      std::string(t->substr(0, 40)) + (t->size() > 40 ? "..." : "") +
                      "\", is longer than the 15 characters a cell holds. Nothing was imported.";
          return r;
        }
        filled.setCell(i, j, *t);
        ++r.filled;
      }
  }
  r.ok = true;
  target = std::move(filled);
  return r;
}

bool importMatrixFile(const std::string& path, MatrixId id, int columns, Model& model,
                      DebugFile* debug, Prompter& prompter) {
  TextMatrix* target = model.matrix(id);
  std::string bytes;
  if (target == nullptr || !readWholeFile(path, bytes)) {
    prompter.inform("Could not read file " + fileTitle(path) + "!", "Ovaro", Icon::Exclamation);
    return false;
  }
  const MatrixImport r = importMatrixTokens(bytes, columns, *target);
  const std::string name = matrixSpec(id).name;
  if (!r.ok) {
    prompter.inform(r.problem, "Import " + name, Icon::Exclamation);
    return false;
  }
  if (r.filled < r.cells)
    prompter.inform("The file ran out after " + std::to_string(r.filled) + " of the " +
                        std::to_string(r.cells) + " elements of " + name + ": " +
                        std::to_string(r.filled) +
                        " cells were filled, the others keep their text.",
                    "Import " + name, Icon::Exclamation);
  if (debug != nullptr && debug->isOpen())
    debug->dumpMatrix(name, 1, target->rows(), 1, target->cols(), toMat(*target));
  return true;
}

}  // namespace ovaro
