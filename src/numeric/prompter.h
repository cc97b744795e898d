// The seam through which every message box, question and file-name request passes.
//
// Computing code never talks to a screen: it hands the exact text, caption, icon, buttons and
// default of each message to a Prompter. The workbench shows them as dialogs, the batch tool
// prints them to stderr and records them for its JSON output, and tests script the answers and
// assert on what was asked. Texts keep their tab runs and carriage returns exactly as written;
// only a display layer turns them into line breaks (see displayText).
//
// The seam lives in the bottom layer so that every layer, the array store included, can reach it.
#pragma once

#include <deque>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace ovaro {

enum class Icon { None, Information, Exclamation, Question, Stop };
enum class Buttons { Ok, YesNo, YesNoCancel };
enum class Answer { Ok, Yes, No, Cancel };

struct Message {
  std::string text;
  std::string caption;
  Icon icon = Icon::None;
  Buttons buttons = Buttons::Ok;
  Answer defaultAnswer = Answer::Ok;
};

struct FileFilter {
  std::string label;    // e.g. "OVARO Files (*.ovi)"
  std::string pattern;  // e.g. "*.ovi"
};

struct FileRequest {
  enum class Kind { Open, Save };
  Kind kind = Kind::Open;
  std::vector<FileFilter> filters;
  std::string defaultExtension = "txt";
  bool promptToCreate = false;         // open dialogs: offer to create a missing file
  bool promptBeforeOverwrite = false;  // save dialogs
};

class Prompter {
 public:
  virtual ~Prompter() = default;

  // Shows one message and returns the button chosen.
  virtual Answer show(const Message& message) = 0;
  // Asks for a file name; nullopt when the user cancels.
  virtual std::optional<std::string> askFileName(const FileRequest& request) = 0;

  // A message with one OK button.
  void inform(std::string text, std::string caption, Icon icon = Icon::None);
  // A question; returns the button chosen.
  Answer ask(std::string text, std::string caption, Buttons buttons, Answer defaultAnswer,
             Icon icon = Icon::Question);
};

// The text as a display shows it: each carriage return becomes a line break, each run of tabs a
// single blank, and blanks left at the end of a line are dropped. The stored text is unchanged.
std::string displayText(std::string_view text);

// A Prompter that answers without a person: scripted answers first, then each message's default
// (or Yes to every Yes/No question when told so). It records every message in order and, when
// given a stream, echoes each one there as "caption: text" in display form.
class RecordingPrompter : public Prompter {
 public:
  explicit RecordingPrompter(std::ostream* echo = nullptr) : echo_(echo) {}

  Answer show(const Message& message) override;
  std::optional<std::string> askFileName(const FileRequest& request) override;

  // Answers used, in order, before falling back to the defaults.
  void scriptAnswer(Answer answer) { answers_.push_back(answer); }
  // File names handed out, in order; nullopt stands for a cancelled dialog.
  void scriptFileName(std::optional<std::string> name) { fileNames_.push_back(std::move(name)); }
  // When set, a Yes/No or Yes/No/Cancel question without a scripted answer is answered Yes.
  void setAnswerYes(bool yes) { answerYes_ = yes; }

  const std::vector<Message>& messages() const { return messages_; }
  const std::vector<FileRequest>& fileRequests() const { return fileRequests_; }
  void clear() {
    messages_.clear();
    fileRequests_.clear();
  }

 private:
  std::ostream* echo_;
  bool answerYes_ = false;
  std::deque<Answer> answers_;
  std::deque<std::optional<std::string>> fileNames_;
  std::vector<Message> messages_;
  std::vector<FileRequest> fileRequests_;
};

}  // namespace ovaro
