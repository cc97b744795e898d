// The batch tool's prompter: every message is kept (for --json) and echoed to stderr as
// "caption: text"; a question is answered Yes, or No when the command line says --no.
#pragma once

#include <ostream>

#include "numeric/prompter.h"

namespace ovaro::cli {

class AnsweringPrompter final : public RecordingPrompter {
 public:
  AnsweringPrompter(std::ostream* echo, bool no) : RecordingPrompter(echo), no_(no) {}
  Answer show(const Message& message) override {
    if (message.buttons != Buttons::Ok) scriptAnswer(no_ ? Answer::No : Answer::Yes);
    return RecordingPrompter::show(message);
  }

 private:
  bool no_;
};

}  // namespace ovaro::cli
