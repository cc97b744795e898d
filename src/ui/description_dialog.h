// The description window: the model's free description text, read and edited. The text goes
// into the model only on OK, and only when the model file can hold it: at most 31999 bytes and
// no '~', which separates the fields of the file.
#pragma once

#include <QDialog>
#include <string>
#include <string_view>

#include "numeric/prompter.h"

class QPlainTextEdit;

namespace ovaro::ui {

// Why `text` cannot be the description, as a message for the user; empty when it can.
std::string descriptionProblem(std::string_view text);

class DescriptionDialog : public QDialog {
 public:
  DescriptionDialog(std::string& description, Prompter& prompter, QWidget* parent = nullptr);
  QPlainTextEdit* editor() const { return editor_; }

  // Stores the text and closes, or says what is wrong and stays open.
  void accept() override;

 private:
  std::string& description_;
  Prompter& prompter_;
  QPlainTextEdit* editor_;
};

}  // namespace ovaro::ui
