#include "numeric/prompter.h"

#include <utility>

namespace ovaro {

void Prompter::inform(std::string text, std::string caption, Icon icon) {
  show(Message{std::move(text), std::move(caption), icon, Buttons::Ok, Answer::Ok});
}

Answer Prompter::ask(std::string text, std::string caption, Buttons buttons, Answer defaultAnswer,
                     Icon icon) {
  return show(Message{std::move(text), std::move(caption), icon, buttons, defaultAnswer});
}

std::string displayText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  auto dropTrailingBlanks = [&out] {
    while (!out.empty() && out.back() == ' ') out.pop_back();
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '\t') {
      while (i + 1 < text.size() && text[i + 1] == '\t') ++i;
      out.push_back(' ');
    } else if (c == '\r' || c == '\n') {
      dropTrailingBlanks();
      out.push_back('\n');
    } else {
      out.push_back(c);
    }
  }
  dropTrailingBlanks();
  return out;
}

Answer RecordingPrompter::show(const Message& message) {
  messages_.push_back(message);
  if (echo_ != nullptr) {
    *echo_ << message.caption << ": " << displayText(message.text) << '\n';
  }
  if (!answers_.empty()) {
    const Answer a = answers_.front();
    answers_.pop_front();
    return a;
  }
  if (answerYes_ && message.buttons != Buttons::Ok) return Answer::Yes;
  return message.defaultAnswer;
}

std::optional<std::string> RecordingPrompter::askFileName(const FileRequest& request) {
  fileRequests_.push_back(request);
  if (fileNames_.empty()) return std::nullopt;
  auto name = std::move(fileNames_.front());
  fileNames_.pop_front();
  return name;
}

}  // namespace ovaro
