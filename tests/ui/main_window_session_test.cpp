// The workbench as a new user meets it: results that belong to the model shown, files that are
// not models, and the desktop conventions (shortcuts, recent files, remembered window, modified
// mark, copying the results table, the status line).
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QDialog>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSettings>
#include <QStatusBar>
#include <QTest>
#include <cstdio>
#include <functional>
#include <memory>

#include "model/example_table.h"
#include "model/model_file.h"
#include "solve/drivers.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"
#include "ui/qt_app.h"
#include "ui/results/table_copy.h"
#include "ui/results_view.h"

namespace ovaro::ui {
namespace {

std::string examplePath(const char* name) {
  return std::string(OVARO_SOURCE_DIR) + "/examples/" + name;
}

std::string copyOf(const testing::TempDir& dir, const char* name) {
  const std::string path = dir.file(name);
  testing::spit(path, testing::slurp(examplePath(name)));
  return path;
}

std::string serialized(const Model& model) {
  RecordingPrompter quiet;
  std::string text;
  serializeModel(model, "m.ovi", text, quiet);
  return text;
}

struct Window {
  explicit Window(const std::string& file = {}) {
    test::qtApp();
    w = std::make_unique<MainWindow>(prompter, file);
    w->setDialogRunner([](QDialog& d) {
      d.accept();
      return static_cast<int>(QDialog::Accepted);
    });
  }
  bool resultsShown() const {
    return w->resultsView()->isVisibleTo(w.get()) || w->resultsView()->table().has_value();
  }
  RecordingPrompter prompter;
  std::unique_ptr<MainWindow> w;
};

// Every way of changing the model takes the previous model's results off the screen and out of
// the store, so Results: Display has nothing of it to show.
TEST(MainWindowSession, AChangedModelTakesTheOldResultsAway) {
  testing::TempDir dir;
  const std::string learn = copyOf(dir, "learn1.ovi");
  const std::vector<std::pair<const char*, std::function<void(Window&)>>> changes = {
      {"Open",
       [&](Window& h) {
         h.prompter.scriptFileName(learn);
         h.w->dispatch(22);
       }},
      {"Clear", [](Window& h) { h.w->dispatch(28); }},
      {"example", [](Window& h) { h.w->dispatch(defaultExample().commandId); }},
  };
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(OVARO_SOURCE_DIR);  // the examples are found from here
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
    Window h(copyOf(dir, "track1.ovi"));
    h.w->dispatch(133);
    ASSERT_TRUE(h.resultsShown());
    change(h);
    EXPECT_FALSE(h.resultsShown());
    EXPECT_EQ(h.w->workbench().results.find("QLP"), nullptr);
    h.prompter.clear();
    h.w->dispatch(156);  // Results: Display, QLP chosen again
    ASSERT_FALSE(h.prompter.messages().empty());
    EXPECT_EQ(h.prompter.messages().back().text.rfind("There are no results to display", 0), 0u);
  }
  std::filesystem::current_path(cwd);
}

// A document opened by mistake is refused: nothing changes, and a Save afterwards writes the
// model's own file, not the document.
TEST(MainWindowSession, AFileThatIsNotAModelChangesNothing) {
  testing::TempDir dir;
  const std::string track = copyOf(dir, "track1.ovi");
  const std::string notes = dir.file("notes.md");
  testing::spit(notes, "# Notes\n\nSee the tracking example.\n");
  Window h(track);
  const std::string before = serialized(h.w->workbench().model);
  h.prompter.scriptFileName(notes);
  h.w->dispatch(22);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].text, "Could not read file notes.md!");
  EXPECT_EQ(h.w->windowTitle().remove("[*]").toStdString(), "Ovaro - track1.ovi");
  EXPECT_EQ(h.w->shellState().fileName, track);
  EXPECT_EQ(serialized(h.w->workbench().model), before);
  h.w->dispatch(25);
  EXPECT_EQ(testing::slurp(notes), "# Notes\n\nSee the tracking example.\n");
}

// Our own advice names commands that exist: the sizes are set under Data: Size.
TEST(MainWindowSession, SolvingAnEmptyModelPointsToDataSize) {
  Window h;
  h.w->dispatch(133);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_NE(h.prompter.messages()[0].text.find("under Data: Size,"), std::string::npos);
}

// File: New, while it cannot build a model, takes nothing away.
TEST(MainWindowSession, NewThatCannotRunLosesNothing) {
  testing::TempDir dir;
  const std::string track = copyOf(dir, "track1.ovi");
  Window h(track);
  h.w->dispatch(133);
  QTest::keyClicks(h.w->textArea(), "notes");
  const std::string before = serialized(h.w->workbench().model);
  h.prompter.clear();
  h.w->dispatch(21);
  EXPECT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(serialized(h.w->workbench().model), before);
  EXPECT_EQ(h.w->shellState().fileName, track);
  EXPECT_EQ(h.w->textArea()->toPlainText(), "notes");
  EXPECT_TRUE(h.resultsShown());
}

// The standard keys reach their commands; the title carries the modified mark.
TEST(MainWindowSession, StandardShortcutsAndTheModifiedMark) {
  Window h;
  h.w->show();
  h.w->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(h.w.get()));
  EXPECT_FALSE(h.w->isWindowModified());
  QTest::keyClicks(h.w->textArea(), "x");
  EXPECT_TRUE(h.w->isWindowModified());
  EXPECT_TRUE(h.w->windowTitle().endsWith("[*]"));

  h.prompter.setAnswerYes(false);
  const std::vector<std::pair<QKeySequence, std::string>> keys = {
      {QKeySequence("Ctrl+O"), "Save current changes in (untitled)?"},  // Open asks first
      {QKeySequence("Ctrl+S"), ""},                                     // Save: Save As dialog
      {QKeySequence("Ctrl+Shift+S"), ""},
      {QKeySequence("F5"), "The model needs at least one state variable"},
  };
  for (const auto& [key, text] : keys) {
    SCOPED_TRACE(key.toString().toStdString());
    h.prompter.clear();
    h.prompter.scriptAnswer(Answer::No);
    h.prompter.scriptFileName(std::nullopt);
    QTest::keySequence(h.w.get(), key);
    if (text.empty()) {
      EXPECT_EQ(h.prompter.fileRequests().size(), 1u);
      EXPECT_EQ(h.prompter.fileRequests()[0].kind, FileRequest::Kind::Save);
    } else {
      ASSERT_FALSE(h.prompter.messages().empty());
      EXPECT_EQ(h.prompter.messages()[0].text.rfind(text, 0), 0u);
    }
  }
  EXPECT_FALSE(h.w->isWindowModified());  // the cancelled Open cleared the flag
}

// Recent files, window geometry and the results preferences survive a restart; the user's own
// settings are not touched (a private store in a temporary directory).
TEST(MainWindowSession, RecentFilesAndWindowSurviveARestart) {
  testing::TempDir dir;
  const std::string track = copyOf(dir, "track1.ovi");
  QSettings settings(QString::fromStdString(dir.file("ovaro.ini")), QSettings::IniFormat);
  {
    Window h;
    h.w->useSettings(&settings);
    h.w->show();
    h.w->setGeometry(40, 60, 640, 420);
    h.w->workbench().resultsFormat = 782;
    h.prompter.scriptFileName(track);
    h.w->dispatch(22);
    EXPECT_TRUE(h.w->close());
  }
  Window h;
  h.w->useSettings(&settings);
  EXPECT_EQ(h.w->geometry().size(), QSize(640, 420));
  EXPECT_EQ(h.w->workbench().resultsFormat, 782);
  ASSERT_EQ(h.w->recentFiles(), QStringList{QString::fromStdString(track)});
  // Choosing the entry opens the file.
  auto* menu = h.w->findChild<QMenu*>("RecentFiles");
  ASSERT_NE(menu, nullptr);
  ASSERT_EQ(menu->actions().size(), 1);
  menu->actions()[0]->trigger();
  EXPECT_EQ(h.w->shellState().fileName, track);
  EXPECT_EQ(h.w->workbench().model.dims.n.value, 1);
}

// The shown table copies as tab-separated numbers, periods down, whatever the orientation on
// screen; Ctrl+C in the table puts it on the clipboard; the status line names the criterion.
TEST(MainWindowSession, ResultsTableCopiesAsNumbersAndTheStatusSaysWhatWasSolved) {
  testing::TempDir dir;
  Window h(copyOf(dir, "track1.ovi"));
  RecordingPrompter quiet;
  const std::optional<Solution> ref = solveQlp(h.w->workbench().model, quiet, {});
  ASSERT_TRUE(ref.has_value());
  h.w->workbench().resultsFormat = 784;  // " %12.4f "
  h.w->dispatch(133);
  EXPECT_EQ(h.w->statusBar()->currentMessage(),
            "QLP solved: criterion " + QString::number(ref->criterion, 'g', 6));
  ASSERT_TRUE(h.w->resultsView()->table().has_value());
  const QString rows = resultsTabText(*h.w->resultsView()->table());

  const QStringList lines = rows.split('\n');
  ASSERT_GE(lines.size(), ref->nt + 2);
  EXPECT_EQ(lines[0].split('\t').size(), 3);  // the period column, the state, the control
  for (int t = 0; t <= ref->nt; ++t) {
    const QStringList cells = lines[t + 1].split('\t');
    ASSERT_EQ(cells.size(), 3) << t;
    EXPECT_NEAR(cells[1].toDouble(), ref->xs(1, t), 5e-5) << t;
    if (t < ref->nt) {
      EXPECT_NEAR(cells[2].toDouble(), ref->us(1, t), 5e-5) << t;
    } else {
      EXPECT_TRUE(cells[2].isEmpty());
    }
  }

  // Periods as columns on screen: the copied text is the same.
  h.w->workbench().results.display.periodsAsRows = false;
  h.w->workbench().results.display.periodsAsColumns = true;
  h.w->showResults();
  ASSERT_FALSE(h.w->resultsView()->table()->periodsAsRows);
  QGuiApplication::clipboard()->clear();
  h.w->show();
  h.w->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(h.w.get()));
  h.w->resultsView()->tableWindow()->setFocus();
  QTest::keySequence(h.w->resultsView()->tableWindow(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), rows);
}

}  // namespace
}  // namespace ovaro::ui
