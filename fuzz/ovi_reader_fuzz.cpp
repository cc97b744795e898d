// Fuzz target for the model-file reader: whatever the bytes, reading must neither crash nor touch
// memory outside its buffers, and a model that was read must survive a save and a second read
// unchanged (the text the reader produced is text the writer reproduces).
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "model/model_file.h"
#include "numeric/prompter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A model file is read only as far as its length modulo 65536.
  const std::string_view bytes(reinterpret_cast<const char*>(data), size % 65536);
  ovaro::RecordingPrompter prompter;
  ovaro::Model model;
  if (ovaro::readModelBytes(bytes, "fuzz.ovi", model, prompter) != 1) return 0;

  std::string first;
  if (!ovaro::serializeModel(model, "fuzz.ovi", first, prompter)) return 0;
  ovaro::Model again;
  if (ovaro::readModelBytes(first, "fuzz.ovi", again, prompter) != 1) std::abort();
  std::string second;
  if (!ovaro::serializeModel(again, "fuzz.ovi", second, prompter)) std::abort();
  if (first != second) std::abort();
  return 0;
}
