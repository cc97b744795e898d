// Fuzz target for the matrix-file reader: the first three bytes choose the rows, the columns and
// the block width, the rest is the file. Whatever the bytes, the import must stay inside the
// matrix, refuse a file without changing a cell, and never fill more cells than the matrix has.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "io/matrix_import.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const int rows = data[0] % 20, cols = data[1] % 20, columns = data[2] % 22 - 1;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 3), size - 3);
  ovaro::TextMatrix target(rows, cols);
  if (rows > 0 && cols > 0) target.setCell(0, 0, "mark");
  const ovaro::TextMatrix before = target;
  const ovaro::MatrixImport r = ovaro::importMatrixTokens(bytes, columns, target);
  if (r.filled > rows * cols || r.cells != rows * cols) std::abort();
  if (!r.ok && !(target == before)) std::abort();
  return 0;
}
