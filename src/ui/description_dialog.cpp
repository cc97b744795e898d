#include "ui/description_dialog.h"

#include <QDialogButtonBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "model/model.h"

namespace ovaro::ui {

std::string descriptionProblem(std::string_view text) {
  if (text.find('~') != std::string_view::npos) {
    return "The description may not contain the character '~', which separates the fields of "
           "the model file. Remove it and press OK again.";
  }
  if (text.size() >= kDescriptionBytes) {
    std::string message = "The description holds ";
    message += std::to_string(text.size());
    message += " bytes; at most ";
    message += std::to_string(kDescriptionBytes - 1);
    message += " fit in the model file. Shorten it and press OK again.";
    return message;
  }
  return {};
}

DescriptionDialog::DescriptionDialog(std::string& description, Prompter& prompter, QWidget* parent)
    : QDialog(parent),
      description_(description),
      prompter_(prompter),
      editor_(new QPlainTextEdit(this)) {
  setObjectName("DescWin");
  setWindowTitle("Description");
  editor_->setPlainText(QString::fromStdString(description));
  editor_->setObjectName("DescTextWinHolder");
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &DescriptionDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &DescriptionDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(editor_);
  layout->addWidget(buttons);
  resize(560, 360);
}

void DescriptionDialog::accept() {
  const std::string text = editor_->toPlainText().toStdString();
  const std::string problem = descriptionProblem(text);
  if (!problem.empty()) {
    prompter_.inform(problem, "Description", Icon::Exclamation);
    return;
  }
  description_ = text;
  QDialog::accept();
}

}  // namespace ovaro::ui
