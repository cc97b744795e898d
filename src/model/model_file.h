// The native model file (".ovi"): the whole Model as one stream of fields.
//
// Every field is its text followed by '~'; numbers are decimal text, matrix elements are the
// cells' own texts, so a save reproduces every value as typed. The reader follows the file's
// version, skipping the fields that older versions did not hold; the writer always writes the
// current version, 321.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "model/model.h"
#include "numeric/prompter.h"

namespace ovaro {

inline constexpr std::uint64_t kLargeModelFileBytes = 128000;  // the size warning starts here
inline constexpr std::uint64_t kReadCountModulus = 65536;      // the read count is 16 bits wide

// Reads the model file at `path` into `model` and returns 1; returns 0, leaving `model` as it was,
// when the file cannot be opened or read, or is not a model file at all: its version or one of
// its sizes is not a whole number (no message in either case: the caller reports it); or when it
// declares sizes that Ovaro does not accept (after an "Error" message naming them). A file of
// 128000 bytes or more draws a warning first. Only (length modulo 65536) bytes are read: the read
// count is a 16-bit quantity, and that is how model files have always been read.
int readModelFile(const std::string& path, Model& model, Prompter& prompter);

// Reads a model from the bytes a read of a model file produced. `fileName` names the file in
// messages. Returns as readModelFile does.
int readModelBytes(std::string_view bytes, std::string_view fileName, Model& model,
                   Prompter& prompter);

// The fields of `model` as the current version writes them. Returns false, with a message, when
// the model cannot be written: W is called for but not held ("lpszMatW is NULL"), or a label, cell
// or the description holds the field separator '~'. A forward-variable model whose maximum lead
// is not 1, 2 or 3 gets "Maximum Lead must be 1, 2 or 3." and no lead matrix is written.
bool serializeModel(const Model& model, std::string_view fileName, std::string& out,
                    Prompter& prompter);

// Writes `model` to `path` and returns 1 when every field was written whole, 0 otherwise. The old
// file is replaced only after the new content is safely on disk; a failed write leaves it as it
// was. An existing longer file keeps its old tail behind the description, where readers ignore
// it, as overwriting in place without truncating always did.
int writeModelFile(const std::string& path, const Model& model, Prompter& prompter);

// The file name without its directory, as title bars and messages show it.
std::string fileTitle(std::string_view path);

}  // namespace ovaro
