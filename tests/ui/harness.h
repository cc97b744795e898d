// The GUI tests' harness: one QApplication on the offscreen platform (no display needed), the
// user's hand on the dialogs, and a workbench window whose dialogs a test scripts.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QDialog>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "support/test_data.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"
#include "ui/plots/plot_window.h"
#include "ui/results_view.h"

namespace ovaro::test {

using Script = std::function<int(QDialog&)>;

inline QApplication& qtApp() {
  static int argc = 1;
  static char name[] = "ovaro_ui_tests";
  static char* argv[] = {name, nullptr};
  static QApplication* app = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *app;
}

// Replaces the field's text by typing, as a user would (so the length limit applies).
inline void type(QLineEdit* edit, const QString& text) {
  ASSERT_NE(edit, nullptr);
  edit->clear();
  QTest::keyClicks(edit, text);
}

// Clicks one of the dialog's standard buttons.
inline void press(QDialog& dialog, QDialogButtonBox::StandardButton which) {
  auto* box = dialog.findChild<QDialogButtonBox*>();
  ASSERT_TRUE(box != nullptr && box->button(which) != nullptr);
  box->button(which)->click();
}

// A dialog script's answer: the dialog accepted as it stands.
inline int accepted(QDialog& dialog) {
  dialog.accept();
  return QDialog::Accepted;
}

// A dialog script that clicks the buttons `ids` wherever the dialog has them, then accepts.
inline Script clicking(std::vector<int> ids) {
  return [ids](QDialog& d) {
    for (QButtonGroup* g : d.findChildren<QButtonGroup*>())
      for (int id : ids)
        if (QAbstractButton* b = g->button(id)) b->click();
    return accepted(d);
  };
}

// Every text a dialog shows: labels, button texts, group captions and tab names.
inline std::set<std::string> textsOf(const QDialog& dialog) {
  std::set<std::string> out;
  for (const QLabel* l : dialog.findChildren<QLabel*>()) out.insert(l->text().toStdString());
  for (const QAbstractButton* b : dialog.findChildren<QAbstractButton*>())
    out.insert(b->text().toStdString());
  for (const QGroupBox* g : dialog.findChildren<QGroupBox*>()) out.insert(g->title().toStdString());
  for (const QTabWidget* t : dialog.findChildren<QTabWidget*>())
    for (int i = 0; i < t->count(); ++i) out.insert(t->tabText(i).toStdString());
  return out;
}

inline std::string example(std::string_view name) {
  return std::string(OVARO_SOURCE_DIR) + "/examples/" + std::string(name);
}

// A copy of an example in `dir`, for tests that may save over the file they opened.
inline std::string exampleCopy(const testing::TempDir& dir, std::string_view name) {
  const std::string path = dir.file(std::string(name));
  testing::spit(path, testing::slurp(example(name)));
  return path;
}

// Records every message and, at "Continue Plotting", a picture of each plot window on screen.
class GrabbingPrompter final : public RecordingPrompter {
 public:
  Answer show(const Message& m) override {
    if (m.caption == "Continue Plotting")
      for (QWidget* w : QApplication::topLevelWidgets())
        if (auto* plot = dynamic_cast<ui::PlotWindow*>(w); plot != nullptr && plot->isVisible())
          grabs.push_back({plot->objectName(), plot->canvas()->grab().toImage()});
    return RecordingPrompter::show(m);
  }
  std::vector<std::pair<QString, QImage>> grabs;
};

// A window on a recording prompter. Every dialog it runs is recorded by its object name and
// handed to the first queued script (used once), else to `fill`, else rejected as by Cancel.
struct Harness {
  explicit Harness(const std::string& file = {}) {
    qtApp();
    window = std::make_unique<ui::MainWindow>(prompter, file);
    window->setDialogRunner([this](QDialog& d) {
      dialogs.push_back(d.objectName().toStdString());
      if (!fills.empty()) {
        const Script next = std::move(fills.front());
        fills.pop_front();
        return next(d);
      }
      if (fill) return fill(d);
      d.reject();
      return static_cast<int>(QDialog::Rejected);
    });
  }

  std::string title() const { return window->windowTitle().remove("[*]").toStdString(); }

  // Whether the window shows results or holds those of QLP.
  bool holdsResults() const {
    return window->resultsView()->isVisibleTo(window.get()) ||
           window->resultsView()->table().has_value() || window->workbench().results.find("QLP");
  }

  void activate() const {
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }

  // Runs command `id`, answering its file dialogs with `files` in turn (nullopt: cancelled).
  void run(int id, std::vector<std::optional<std::string>> files = {}) {
    for (auto& f : files) prompter.scriptFileName(f);
    window->dispatch(id);
  }
  // The texts of the messages shown.
  std::vector<std::string> texts() const {
    std::vector<std::string> out;
    for (const Message& m : prompter.messages()) out.push_back(m.text);
    return out;
  }

  GrabbingPrompter prompter;
  std::unique_ptr<ui::MainWindow> window;
  std::vector<std::string> dialogs;
  std::deque<Script> fills;
  Script fill;
};

}  // namespace ovaro::test
