// Fuzz target for the QLP and VELD readers: the first byte chooses the format, the rest is the
// file. Whatever the bytes, reading (and echoing what it read) must neither crash nor touch memory
// outside its buffers, and a model that was read must survive an export and a second import
// unchanged.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "io/interchange.h"
#include "numeric/prompter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const ovaro::InputFormat format =
      (data[0] & 1) != 0 ? ovaro::InputFormat::Veld : ovaro::InputFormat::Qlp;
  const std::string_view bytes(reinterpret_cast<const char*>(data + 1), size - 1);
  ovaro::RecordingPrompter prompter;
  ovaro::Model model;
  // The echo goes where nothing is kept, but every dump of it is still made.
  ovaro::DebugFile debug;
  if (!debug.open("/dev/null")) std::abort();
  if (ovaro::readInputBytes(format, bytes, model, &debug, prompter) != 1) return 0;

  const std::string first = ovaro::serializeInput(format, model);
  ovaro::Model again;
  if (ovaro::readInputBytes(format, first, again, nullptr, prompter) != 1) std::abort();
  if (ovaro::serializeInput(format, again) != first) std::abort();
  return 0;
}
