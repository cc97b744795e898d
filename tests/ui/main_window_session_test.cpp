// The workbench as a new user meets it: stale results, non-model files, desktop conventions.
#include <gtest/gtest.h>

#include <QAction>
#include <QClipboard>
#include <QDialog>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>

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

std::string copyOf(const testing::TempDir& dir, const char* name) {
  testing::spit(dir.file(name),
                testing::slurp(std::string(OVARO_SOURCE_DIR) + "/examples/" + name));
  return dir.file(name);
}

std::string serialized(const Model& model) {
  RecordingPrompter quiet;
  std::string text;
  return serializeModel(model, "m.ovi", text, quiet), text;
}

struct Window {
  explicit Window(const std::string& file = {}) : w((test::qtApp(), new MainWindow(p, file))) {
    w->setDialogRunner([](QDialog& d) { return d.accept(), static_cast<int>(QDialog::Accepted); });
  }
  bool resultsShown() const {
    return w->resultsView()->isVisibleTo(w.get()) || w->resultsView()->table().has_value();
  }
  void activate() const {
    w->show();
    w->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(w.get()));
  }
  RecordingPrompter p;
  std::unique_ptr<MainWindow> w;
};

TEST(MainWindowSession, AChangedModelTakesTheOldResultsAway) {
  testing::TempDir dir;
  const std::vector<std::function<void(Window&)>> changes = {
      [&](Window& h) { h.p.scriptFileName(copyOf(dir, "learn1.ovi")), h.w->dispatch(22); },  // Open
      [](Window& h) { h.w->dispatch(28); },                           // Clear
      [](Window& h) { h.w->dispatch(defaultExample().commandId); }};  // an example
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(OVARO_SOURCE_DIR);  // where the examples are found
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Window h(copyOf(dir, "track1.ovi"));
    h.w->dispatch(133);
    ASSERT_TRUE(h.resultsShown());
    changes[i](h);
    EXPECT_FALSE(h.resultsShown()) << i;
    h.p.clear();
    h.w->dispatch(156);  // Results: Display, QLP still chosen
    ASSERT_FALSE(h.p.messages().empty());
    EXPECT_EQ(h.p.messages().back().text.rfind("There are no results to display", 0), 0u) << i;
  }
  std::filesystem::current_path(cwd);
}

// Prose, then a version and a size that are not whole numbers: refused, and Save spares them.
TEST(MainWindowSession, AFileThatIsNotAModelChangesNothingAndSaveSparesIt) {
  testing::TempDir dir;
  Window h(copyOf(dir, "track1.ovi"));
  const std::string before = serialized(h.w->workbench().model), notes = dir.file("notes.md");
  for (const char* text :
       {"# Notes\n", "3.21~B~b~1~1~0~1~4~0~20~1~0~0~0~", "321~B~b~1~1~0~1~4~0~20~1~0~0~0.5~"}) {
    testing::spit(notes, text);
    h.p.clear();
    h.p.scriptFileName(notes);
    h.w->dispatch(22);
    h.w->dispatch(25);
    ASSERT_EQ(h.p.messages().size(), 1u) << text;
    EXPECT_EQ(h.p.messages()[0].text, "Could not read file notes.md!");
    EXPECT_EQ(h.w->windowTitle().remove("[*]"), "Ovaro - track1.ovi");
    EXPECT_EQ(serialized(h.w->workbench().model), before);
    EXPECT_EQ(testing::slurp(notes), text);
  }
}

TEST(MainWindowSession, SolvingAnEmptyModelPointsToDataSize) {
  Window h;
  h.w->dispatch(133);
  ASSERT_EQ(h.p.messages().size(), 1u);
  EXPECT_NE(h.p.messages()[0].text.find("under Data: Size,"), std::string::npos);
}

// Standard keys, the modified mark, and what a restart keeps (in a private settings store).
TEST(MainWindowSession, ShortcutsModifiedMarkAndWhatARestartKeeps) {
  testing::TempDir dir;
  const std::string track = copyOf(dir, "track1.ovi");
  QSettings settings(QString::fromStdString(dir.file("ovaro.ini")), QSettings::IniFormat);
  {
    Window h;
    h.w->useSettings(&settings);
    h.activate();
    h.w->setGeometry(40, 60, 640, 420);
    QTest::keyClicks(h.w->textArea(), "x");
    EXPECT_TRUE(h.w->isWindowModified());
    h.p.scriptAnswer(Answer::No);  // the save prompt before Open
    h.p.scriptFileName(track);
    QTest::keySequence(h.w.get(), QKeySequence("Ctrl+O"));
    EXPECT_EQ(h.w->shellState().fileName, track);
    EXPECT_FALSE(h.w->isWindowModified());
    for (const char* key : {"Ctrl+S", "Ctrl+Shift+S", "F5"})
      QTest::keySequence(h.w.get(), QKeySequence(key));
    EXPECT_EQ(h.p.fileRequests().size(), 2u);  // Open, then Save As (Save wrote without asking)
    EXPECT_TRUE(h.resultsShown());             // F5 solved
    h.w->setDialogRunner([](QDialog& d) {      // Preferences: Threads for Monte Carlo runs
      d.findChild<QSpinBox*>("threads")->setValue(3);
      return d.accept(), static_cast<int>(QDialog::Accepted);
    });
    h.w->dispatch(4108);
    EXPECT_EQ(h.w->workbench().threads, 3);
    EXPECT_TRUE(h.w->close());
  }
  Window h;
  h.w->useSettings(&settings);
  EXPECT_EQ(h.w->geometry().size(), QSize(640, 420));
  EXPECT_EQ(h.w->workbench().threads, 3);
  auto* menu = h.w->findChild<QMenu*>("RecentFiles");
  ASSERT_TRUE(menu != nullptr && menu->actions().size() == 1);
  menu->actions()[0]->trigger();
  EXPECT_EQ(h.w->shellState().fileName, track);
}

// The table copies as tab-separated numbers, periods down, in either orientation on screen.
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
  const QString rows = resultsTabText(*h.w->resultsView()->table());
  const QStringList lines = rows.split('\n');
  ASSERT_GE(lines.size(), ref->nt + 2);
  for (int t = 0; t <= ref->nt; ++t) {
    const QStringList cells = lines[t + 1].split('\t');
    ASSERT_EQ(cells.size(), 3) << t;  // the period, the state, the control
    EXPECT_NEAR(cells[1].toDouble(), ref->xs(1, t), 5e-5) << t;
    EXPECT_NEAR(cells[2].toDouble(), t < ref->nt ? ref->us(1, t) : 0.0, 5e-5) << t;
  }
  h.w->workbench().results.display = {3300, false, false, false, true};  // periods as columns
  h.w->showResults();
  ASSERT_FALSE(h.w->resultsView()->table()->periodsAsRows);
  h.activate();
  h.w->resultsView()->tableWindow()->setFocus();
  QTest::keySequence(h.w->resultsView()->tableWindow(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), rows);
}

}  // namespace
}  // namespace ovaro::ui
