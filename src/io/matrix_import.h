// Filling one input matrix of the Model from a matrix file (".dma"): whitespace-separated tokens,
// each the text of one element, kept as the cell's text without conversion.
//
// The elements come in column blocks of k columns (the "Import Matrix Columns" preference): the
// first block holds columns 1..min(k, cols) for every row, row after row, the next block the next
// k columns, and a last block the columns left over. With k = 5 a 3 x 12 matrix is read as
// blocks of 5, 5 and 2 columns; with k = 1 it is read column by column.
#pragma once

#include <string>
#include <string_view>

#include "io/debug_file.h"
#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro {

inline constexpr int kDefaultImportColumns = 5;

struct MatrixImport {
  bool ok = false;      // false: the file was refused and the matrix left as it was
  int filled = 0;       // cells that received a token
  int cells = 0;        // cells of the matrix
  std::string problem;  // why it was refused
};

// Reads the tokens of `bytes` into `target` in column blocks of `columns`. A token longer than a
// cell holds refuses the whole file, naming the token and its position, and changes nothing;
// a file that runs out of tokens fills what it can and leaves the other cells as they were.
MatrixImport importMatrixTokens(std::string_view bytes, int columns, TextMatrix& target);

// The whole import of a matrix file into matrix `id` of `model`: "Could not read file %s!" when
// the file cannot be read, the refusal or the short file explained, and, when `debug` is open,
// the imported matrix dumped under its name. Returns whether the matrix was (at least partly)
// filled.
bool importMatrixFile(const std::string& path, MatrixId id, int columns, Model& model,
                      DebugFile* debug, Prompter& prompter);

}  // namespace ovaro
