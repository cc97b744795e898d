#include "ui/qt_prompter.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStringList>

namespace ovaro::ui {

namespace {

QMessageBox::Icon boxIcon(Icon icon) {
  switch (icon) {
    case Icon::Information:
      return QMessageBox::Information;
    case Icon::Exclamation:
      return QMessageBox::Warning;
    case Icon::Question:
      return QMessageBox::Question;
    case Icon::Stop:
      return QMessageBox::Critical;
    case Icon::None:
      break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButton boxButton(Answer answer) {
  switch (answer) {
    case Answer::Yes:
      return QMessageBox::Yes;
    case Answer::No:
      return QMessageBox::No;
    case Answer::Cancel:
      return QMessageBox::Cancel;
    case Answer::Ok:
      break;
  }
  return QMessageBox::Ok;
}

}  // namespace

Answer QtPrompter::show(const Message& message) {
  QMessageBox box(boxIcon(message.icon), QString::fromStdString(message.caption),
                  QString::fromStdString(displayText(message.text)), QMessageBox::NoButton,
                  owner_.data());
  switch (message.buttons) {
    case Buttons::Ok:
      box.setStandardButtons(QMessageBox::Ok);
      break;
    case Buttons::YesNo:
      box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
      break;
    case Buttons::YesNoCancel:
      box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
      break;
  }
  box.setDefaultButton(boxButton(message.defaultAnswer));
  if (windowModal_ && owner_) box.setWindowModality(Qt::WindowModal);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return Answer::Yes;
    case QMessageBox::No:
      return Answer::No;
    case QMessageBox::Cancel:
      return Answer::Cancel;
    default:
      break;
  }
  // Closing a Yes/No/Cancel box with Escape or the window's close button is a Cancel.
  return message.buttons == Buttons::YesNoCancel ? Answer::Cancel
         : message.buttons == Buttons::YesNo     ? Answer::No
                                                 : Answer::Ok;
}

QString fileDialogFilter(const FileRequest& request) {
  QStringList parts;
  for (const FileFilter& f : request.filters) parts << QString::fromStdString(f.label);
  return parts.join(";;");
}

std::optional<std::string> QtPrompter::askFileName(const FileRequest& request) {
  QFileDialog dialog(owner_.data());
  dialog.setNameFilter(fileDialogFilter(request));
  dialog.setDefaultSuffix(QString::fromStdString(request.defaultExtension));
  if (request.kind == FileRequest::Kind::Save) {
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.promptBeforeOverwrite);
  } else {
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // An open dialog that offers to create a missing file accepts any name; the reader reports
    // a file it cannot read.
    dialog.setFileMode(request.promptToCreate ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  }
  if (!lastDirectory(request.kind).isEmpty()) dialog.setDirectory(lastDirectory(request.kind));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const QString chosen = dialog.selectedFiles().front();
  setLastDirectory(request.kind, QFileInfo(chosen).absolutePath());
  return chosen.toStdString();
}

QString QtPrompter::lastDirectory(FileRequest::Kind kind) const {
  return kind == FileRequest::Kind::Open ? openDirectory_ : saveDirectory_;
}

void QtPrompter::setLastDirectory(FileRequest::Kind kind, const QString& directory) {
  (kind == FileRequest::Kind::Open ? openDirectory_ : saveDirectory_) = directory;
}

}  // namespace ovaro::ui
