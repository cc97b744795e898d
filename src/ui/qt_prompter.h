// The workbench's Prompter: every message as a modal message box with the caption, icon and
// buttons asked for, every file-name request as a file dialog.
//
// Message texts carry their own tab runs and carriage returns; they are shown in display form
// (a line break for each carriage return, one blank for a run of tabs) and stored unchanged.
#pragma once

#include <QPointer>
#include <QWidget>

#include "numeric/prompter.h"

namespace ovaro::ui {

class QtPrompter final : public Prompter {
 public:
  // The owner window of the boxes and dialogs, set once the main window exists.
  void setOwner(QWidget* owner) { owner_ = owner; }
  // While set, message boxes block only their owner window, so that a window of its own (a plot
  // window) stays usable while a message is up.
  void setWindowModal(bool on) { windowModal_ = on; }

  Answer show(const Message& message) override;
  std::optional<std::string> askFileName(const FileRequest& request) override;

  // The directory the next open or save dialog starts in: where the last one of its kind was
  // confirmed (empty: the working directory).
  QString lastDirectory(FileRequest::Kind kind) const;
  void setLastDirectory(FileRequest::Kind kind, const QString& directory);

 private:
  QPointer<QWidget> owner_;
  bool windowModal_ = false;
  QString openDirectory_;
  QString saveDirectory_;
};

// The filter string of a file dialog: "OVARO Files (*.ovi);;All Files (*.*;*)" from the labels.
// Each label already names its pattern, so the labels alone make the Qt filter.
QString fileDialogFilter(const FileRequest& request);

}  // namespace ovaro::ui
