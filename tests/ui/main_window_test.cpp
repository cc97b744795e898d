// The workbench's main window driven through its command table, with a scripted prompter and
// scripted dialogs, on the offscreen platform.
#include "ui/main_window.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QClipboard>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <utility>
#include <vector>

#include "model/example_table.h"
#include "model/model_file.h"
#include "results/results_table.h"
#include "solve/drivers.h"
#include "stoch/compare.h"
#include "support/temp_dir.h"
#include "support/test_data.h"
#include "ui/dialogs/spec_dialogs.h"
#include "ui/menu_table.h"
#include "ui/qt_app.h"
#include "ui/results_view.h"

namespace ovaro::ui {
namespace {

std::string example(std::string_view name) {
  return std::string(OVARO_SOURCE_DIR) + "/examples/" + std::string(name);
}

// A copy of an example in `dir`, for tests that may save over the file they opened.
std::string exampleCopy(const testing::TempDir& dir, std::string_view name) {
  const std::string path = dir.file(std::string(name));
  testing::spit(path, testing::slurp(example(name)));
  return path;
}

std::string serialized(const Model& model) {
  RecordingPrompter quiet;
  std::string text;
  serializeModel(model, "m.ovi", text, quiet);
  return text;
}

// A window on a scripted prompter, with every dialog recorded by its object name and closed by
// a script (by default: rejected, as if the user pressed Cancel).
struct Harness {
  explicit Harness(const std::string& file = {}) {
    test::qtApp();
    window = std::make_unique<MainWindow>(prompter, file);
    window->setDialogRunner([this](QDialog& d) {
      dialogs.push_back(d.objectName().toStdString());
      if (fill) return fill(d);
      d.reject();
      return static_cast<int>(QDialog::Rejected);
    });
  }
  std::string title() const { return window->windowTitle().remove("[*]").toStdString(); }
  std::vector<std::string> texts() const {
    std::vector<std::string> out;
    for (const Message& m : prompter.messages()) out.push_back(m.text);
    return out;
  }

  RecordingPrompter prompter;
  std::unique_ptr<MainWindow> window;
  std::vector<std::string> dialogs;
  std::function<int(QDialog&)> fill;
};

// Every command of the menu bar with its label (tests/data/menu_commands.txt).
std::vector<std::pair<int, std::string>> commands() {
  std::vector<std::pair<int, std::string>> out;
  for (const std::string& line : testing::dataLines("menu_commands.txt")) {
    const std::size_t blank = line.find(' ');
    out.emplace_back(std::stoi(line.substr(0, blank)), line.substr(blank + 1));
  }
  return out;
}

// All actions reachable from the menu bar, cascades included.
void collectActions(QMenu* menu, std::vector<QAction*>& out) {
  for (QAction* a : menu->actions()) {
    if (a->menu() != nullptr) {
      collectActions(a->menu(), out);
    } else if (!a->isSeparator()) {
      out.push_back(a);
    }
  }
}

TEST(MainWindowCommands, EveryCommandHasItsMenuItemLabelAndHandler) {
  Harness h;
  std::vector<QAction*> inMenus;
  for (QAction* top : h.window->menuBar()->actions()) collectActions(top->menu(), inMenus);
  std::set<int> menuIds;
  for (QAction* a : inMenus) menuIds.insert(a->data().toInt());

  const auto kCommands = commands();
  ASSERT_GT(kCommands.size(), 90u);
  for (const auto& [id, label] : kCommands) {
    SCOPED_TRACE(id);
    EXPECT_TRUE(h.window->handles(id));
    ASSERT_NE(h.window->action(id), nullptr);
    EXPECT_EQ(h.window->action(id)->text().toStdString(), label);
    EXPECT_TRUE(menuIds.count(id) == 1);
  }
  // Every example of the library has its entry and handler; the examples browser has a handler
  // but no menu item.
  for (const ExampleEntry& e : exampleTable()) {
    EXPECT_TRUE(menuIds.count(e.commandId) == 1) << e.commandId;
    EXPECT_TRUE(h.window->handles(e.commandId));
    EXPECT_EQ(h.window->action(e.commandId)->text().toStdString(), e.description);
  }
  EXPECT_TRUE(h.window->handles(13));
  EXPECT_EQ(h.window->action(13), nullptr);
  // No menu item without a handler, and nothing in the menus beyond the commands and examples.
  for (int id : menuIds) EXPECT_TRUE(h.window->handles(id)) << id;
  EXPECT_EQ(menuIds.size(), kCommands.size() + exampleTable().size());
  // The three toggles start as the preferences do.
  EXPECT_FALSE(h.window->action(2916)->isChecked());
  EXPECT_TRUE(h.window->action(2908)->isChecked());
  EXPECT_TRUE(h.window->action(168)->isChecked());
}

// A command is alive when it shows a message, opens a dialog, or changes the window. Only the
// menu headings and the font placeholder do nothing, as they are meant to.
TEST(MainWindowCommands, NoCommandIsSilentlyDead) {
  const std::set<int> quiet = {205, 210, 224, 225, 226, 170};
  // Exit, Save, the text-area edits and the toggles change nothing a message or title shows; they
  // have tests of their own.
  const std::set<int> skipped = {29, 25, 40, 41, 42, 43, 44, 45, 168, 2908, 2916};
  testing::TempDir dir;
  const std::string model = exampleCopy(dir, "track1.ovi");
  for (int id : allCommandIds()) {
    if (skipped.count(id) != 0) continue;
    SCOPED_TRACE(id);
    Harness h(model);
    h.prompter.scriptFileName(std::nullopt);  // any file dialog is cancelled
    const std::string before = h.title();
    h.window->dispatch(id);
    const bool acted = !h.prompter.messages().empty() || !h.dialogs.empty() ||
                       h.title() != before || !h.prompter.fileRequests().empty() ||
                       h.window->resultsView()->isVisibleTo(h.window.get());
    EXPECT_EQ(acted, quiet.count(id) == 0);
  }
}

TEST(MainWindowStartup, TitleAndFileArgument) {
  {
    Harness h;
    EXPECT_EQ(h.title(), "Ovaro - (untitled)");
    EXPECT_TRUE(h.prompter.messages().empty());
    EXPECT_EQ(h.window->workbench().model.dims.n.value, 0);
  }
  {
    Harness h(example("track1.ovi"));
    EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
    EXPECT_TRUE(h.prompter.messages().empty());
    EXPECT_EQ(h.window->workbench().model.dims.n.value, 1);
    EXPECT_EQ(h.window->shellState().modified, 0);
  }
  {
    // A missing file: the message names it, and the title still shows it.
    Harness h("/nonexistent/dir/nothere.ovi");
    ASSERT_EQ(h.prompter.messages().size(), 1u);
    const Message& m = h.prompter.messages()[0];
    EXPECT_EQ(m.text, "File nothere.ovi cannot be read!");
    EXPECT_EQ(m.caption, "Ovaro");
    EXPECT_EQ(m.icon, Icon::Exclamation);
    EXPECT_EQ(h.title(), "Ovaro - nothere.ovi");
  }
}

TEST(MainWindowFile, TitleThroughOpenSaveAsClearAndExamples) {
  testing::TempDir dir;
  Harness h;
  // Open cancelled: title unchanged, modified flag cleared although nothing was read.
  QTest::keyClicks(h.window->textArea(), "note");
  EXPECT_EQ(h.window->shellState().modified, 1);
  h.prompter.scriptAnswer(Answer::No);  // do not save the note
  h.prompter.scriptFileName(std::nullopt);
  h.window->dispatch(22);
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_EQ(h.window->shellState().modified, 0);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].text, "Save current changes in (untitled)?");
  EXPECT_EQ(h.prompter.messages()[0].buttons, Buttons::YesNoCancel);

  // Open a file that cannot be read: message, then the name is forgotten.
  h.prompter.clear();
  h.prompter.scriptFileName(dir.file("missing.ovi"));
  h.window->dispatch(22);
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Could not read file missing.ovi!"});
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_TRUE(h.window->shellState().fileName.empty());

  // Open the example; then Save As writes a copy that reads back equal.
  h.prompter.scriptFileName(example("infl2.ovi"));
  h.window->dispatch(22);
  EXPECT_EQ(h.title(), "Ovaro - infl2.ovi");
  const std::string copy = dir.file("copy.ovi");
  h.prompter.scriptFileName(copy);
  h.window->dispatch(26);
  EXPECT_EQ(h.title(), "Ovaro - copy.ovi");
  Model readBack;
  ASSERT_EQ(readModelFile(copy, readBack, h.prompter), 1);
  EXPECT_EQ(serialized(readBack), serialized(h.window->workbench().model));
  EXPECT_EQ(readBack.dims.n.value, 2);

  // Clear: the title forgets the file, the window does not; Save writes to it without asking.
  h.window->dispatch(28);
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_EQ(h.window->workbench().model.dims.n.value, 0);
  EXPECT_EQ(h.window->shellState().fileName, copy);
  const std::size_t requests = h.prompter.fileRequests().size();
  h.window->dispatch(25);
  EXPECT_EQ(h.prompter.fileRequests().size(), requests);
  ASSERT_EQ(readModelFile(copy, readBack, h.prompter), 1);
  EXPECT_EQ(readBack.dims.n.value, 0);

  // An example: no save prompt despite unsaved edits; the title names the example while the
  // current file stays the one last saved.
  QTest::keyClicks(h.window->textArea(), "x");
  h.prompter.clear();
  exampleCopy(dir, defaultExample().fileName);
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());  // examples are looked up in the working directory
  h.window->dispatch(defaultExample().commandId);
  EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
  std::filesystem::current_path(cwd);
  EXPECT_EQ(h.dialogs.back(), "DescWin");  // the loaded model's description opens
  EXPECT_EQ(h.window->shellState().fileName, copy);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].text, defaultExample().description);
  EXPECT_EQ(h.prompter.messages()[0].caption, "Model Loaded");
  EXPECT_EQ(h.window->shellState().modified, 1);
  EXPECT_EQ(h.window->workbench().model.dims.n.value, 1);

  // File: Print always fails, naming the file title.
  h.prompter.clear();
  h.window->dispatch(27);
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Could not print file copy.ovi"});
}

TEST(MainWindowFile, SavePromptOnClose) {
  testing::TempDir dir;
  {
    // Yes on an unnamed model opens Save As; cancelling it cancels the close.
    Harness h;
    h.window->show();
    QTest::keyClicks(h.window->textArea(), "edit");
    h.prompter.scriptAnswer(Answer::Yes);
    h.prompter.scriptFileName(std::nullopt);
    EXPECT_FALSE(h.window->close());
    EXPECT_TRUE(h.window->isVisible());
    ASSERT_EQ(h.prompter.fileRequests().size(), 1u);
    EXPECT_EQ(h.prompter.fileRequests()[0].kind, FileRequest::Kind::Save);
    EXPECT_EQ(h.prompter.fileRequests()[0].filters[0].label, "OVARO Files (*.ovi)");
    EXPECT_EQ(h.prompter.fileRequests()[0].filters[0].pattern, "*.ovi");
    // Cancel at the prompt keeps the window too; No lets it close.
    h.prompter.scriptAnswer(Answer::Cancel);
    EXPECT_FALSE(h.window->close());
    h.prompter.scriptAnswer(Answer::No);
    EXPECT_TRUE(h.window->close());
  }
  {
    // Yes on a named model saves to its file without asking, then closes.
    const std::string target = exampleCopy(dir, "infl2.ovi");
    Harness h(target);
    h.window->workbench().model.dims.n.set(2);  // unchanged, but the file is rewritten from it
    std::filesystem::remove(target);
    h.window->show();
    QTest::keyClicks(h.window->textArea(), "edit");
    h.prompter.scriptAnswer(Answer::Yes);
    EXPECT_TRUE(h.window->close());
    EXPECT_TRUE(h.prompter.fileRequests().empty());
    Model readBack;
    EXPECT_EQ(readModelFile(target, readBack, h.prompter), 1);
    EXPECT_EQ(readBack.dims.n.value, 2);
  }
  {
    // Unmodified: no prompt at all.
    Harness h;
    h.window->show();
    EXPECT_TRUE(h.window->close());
    EXPECT_TRUE(h.prompter.messages().empty());
  }
}

TEST(MainWindowPreferences, TogglesHelpAndPlaceholders) {
  Harness h;
  QAction* warnings = h.window->action(168);
  h.window->dispatch(168);
  EXPECT_FALSE(warnings->isChecked());
  EXPECT_EQ(h.window->workbench().shell.warningMessages, 0);
  h.window->dispatch(168);
  EXPECT_TRUE(warnings->isChecked());
  EXPECT_EQ(h.window->workbench().shell.warningMessages, 1);
  h.window->dispatch(2916);
  EXPECT_TRUE(h.window->action(2916)->isChecked());
  EXPECT_EQ(h.window->workbench().shell.askScenarioQuestion, 1);
  h.window->dispatch(2908);
  EXPECT_EQ(h.window->workbench().shell.debugImportedMatrices, 0);
  // Clear restores the start-up preferences, and the check marks follow.
  h.window->dispatch(28);
  EXPECT_FALSE(h.window->action(2916)->isChecked());
  EXPECT_TRUE(h.window->action(2908)->isChecked());

  h.window->dispatch(180);
  h.window->dispatch(27);
  h.window->dispatch(158);
  h.window->dispatch(142);
  h.window->dispatch(143);
  h.window->dispatch(147);
  h.window->dispatch(148);
  ASSERT_EQ(h.prompter.messages().size(), 7u);
  EXPECT_EQ(h.prompter.messages()[0].text, "Help not yet implemented!");
  EXPECT_EQ(h.prompter.messages()[0].icon, Icon::Exclamation);
  EXPECT_EQ(h.prompter.messages()[1].text, "Could not print file (untitled)");
  EXPECT_EQ(h.prompter.messages()[2].text,
            "This option not supported yet.\t\t\t\t\t\t\t\r Use 'Solve: Compare Print' instead");
  for (std::size_t i = 3; i < 7; ++i) {
    EXPECT_EQ(h.prompter.messages()[i].text, "This option not supported yet.");
    EXPECT_EQ(h.prompter.messages()[i].caption, "Ovaro");
  }
  for (const Message& m : h.prompter.messages()) EXPECT_EQ(m.caption, "Ovaro");
  // Neither the updating variants nor the debug variant asked for a debug file.
  EXPECT_TRUE(h.prompter.fileRequests().empty());
}

TEST(MainWindowData, StochasticTermChecksComeBeforeTheDialogs) {
  Harness h(example("track1.ovi"));  // deterministic, no policy effect
  h.window->dispatch(76);
  h.window->dispatch(77);
  h.window->dispatch(78);
  ASSERT_EQ(h.prompter.messages().size(), 3u);
  EXPECT_EQ(h.prompter.messages()[0].caption, "Additive Noise Terms Not Defined!");
  EXPECT_EQ(h.prompter.messages()[1].caption, "Uncertain Parameter Terms Not Defined!");
  EXPECT_EQ(h.prompter.messages()[2].caption, "Measurement Error Terms Not Defined!");
  EXPECT_EQ(h.prompter.messages()[0].text,
            "Stochastic terms specification is 'deterministic'\t\t\t\t\t\t\t\t\r so the "
            "additive noise terms are not defined.");
  // Under parameter uncertainty only the measurement-error terms are refused.
  h.window->workbench().model.flags.stochTerms = 1724;
  h.prompter.clear();
  h.window->dispatch(78);
  h.window->dispatch(77);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].caption, "Measurement Error Terms Not Defined!");
  EXPECT_EQ(h.dialogs, std::vector<std::string>{"DataInStoch"});
  // Policy effect off: the N matrix is not allocated.
  h.window->workbench().model.flags.policyToParam = 406;
  h.prompter.clear();
  h.window->dispatch(80);
  EXPECT_EQ(h.prompter.messages().at(0).caption, "N Matrix Not Allocated !");
  // A forward-variable model with a lead outside 1..3.
  h.window->workbench().model.flags.forwardVars = 405;
  h.window->workbench().model.dims.maxLead.set(4);
  h.prompter.clear();
  h.window->dispatch(71);
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].text, "Maximum Lead must be 1, 2 or 3.");
  EXPECT_EQ(h.prompter.messages()[0].caption, "Error");
}

TEST(MainWindowEdit, TextAreaLimitEditMenuAndFindReplace) {
  Harness h;
  QPlainTextEdit* text = h.window->textArea();
  text->setPlainText(QString(static_cast<int>(kTextAreaLimit) - 1, QChar('a')));
  text->moveCursor(QTextCursor::End);
  QTest::keyClicks(text, "bc");
  EXPECT_EQ(text->toPlainText().size(), static_cast<qsizetype>(kTextAreaLimit));
  ASSERT_EQ(h.prompter.messages().size(), 1u);
  EXPECT_EQ(h.prompter.messages()[0].text, "Edit control out of space.");
  EXPECT_EQ(h.prompter.messages()[0].icon, Icon::Stop);
  // Pasting past the limit is refused whole.
  QApplication::clipboard()->setText("xyz");
  h.window->dispatch(43);
  EXPECT_EQ(text->toPlainText().size(), static_cast<qsizetype>(kTextAreaLimit));
  EXPECT_EQ(h.prompter.messages().size(), 2u);

  // Undo is enabled exactly when the text area can undo; Paste when the clipboard holds text.
  text->setPlainText({});
  QMenu* edit = h.window->action(40)->associatedObjects().isEmpty()
                    ? nullptr
                    : qobject_cast<QMenu*>(h.window->action(40)->associatedObjects().front());
  ASSERT_NE(edit, nullptr);
  QApplication::clipboard()->clear();
  emit edit->aboutToShow();
  EXPECT_FALSE(h.window->action(40)->isEnabled());
  EXPECT_FALSE(h.window->action(43)->isEnabled());
  EXPECT_TRUE(h.window->action(41)->isEnabled());
  QTest::keyClicks(text, "one two one");
  QApplication::clipboard()->setText("two");
  emit edit->aboutToShow();
  EXPECT_TRUE(h.window->action(40)->isEnabled());
  EXPECT_TRUE(h.window->action(43)->isEnabled());

  // Replace All grows the text and still ends; a missing text is reported.
  h.prompter.clear();
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::ReplaceAll, "one", "one one"), 2);
  EXPECT_EQ(text->toPlainText(), "one one two one one");
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::ReplaceAll, "zzz", "y"), 0);
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Text not found!"});
  text->moveCursor(QTextCursor::Start);
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::FindNext, "two", {}), 1);
  EXPECT_EQ(text->textCursor().selectedText(), "two");
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::Replace, "two", "2"), 1);
  EXPECT_EQ(text->toPlainText(), "one one 2 one one");
}

// The values drawn in one line of the table window, left to right, as their texts trimmed.
std::vector<std::string> lineTexts(const ResultsView& view, int y) {
  std::vector<std::pair<int, std::string>> cells;
  for (const PlacedText& t : view.tableWindow()->texts()) {
    if (t.y == y) cells.emplace_back(t.x, t.text.trimmed().toStdString());
  }
  std::sort(cells.begin(), cells.end());
  std::vector<std::string> out;
  for (auto& c : cells) out.push_back(c.second);
  return out;
}

std::string formatted(const char* format, double v) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, v);
  return QString(buffer).trimmed().toStdString();
}

// The y of the row heading that reads `text`, or -1.
int rowHeadingY(const ResultsView& view, const std::string& text) {
  for (const PlacedText& t : view.rowHeadingWindow()->texts()) {
    if (t.text.trimmed().toStdString() == text) return t.y;
  }
  return -1;
}

TEST(MainWindowSolve, QlpFromTheMenuShowsTheSolvedPathsInFormatAndOrientation) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "track1.ovi"));
  // The same model solved directly, as the reference for every number drawn.
  RecordingPrompter quiet;
  const std::optional<Solution> reference = solveQlp(h.window->workbench().model, quiet, {});
  ASSERT_TRUE(reference.has_value());
  const int T = reference->nt;

  h.window->dispatch(133);
  ResultsView& view = *h.window->resultsView();
  ASSERT_TRUE(view.isVisibleTo(h.window.get()));
  ASSERT_TRUE(view.table().has_value());
  EXPECT_EQ(view.columnHeadingWindow()->objectName(), "ResultsHorzAcrWin");
  EXPECT_EQ(view.rowHeadingWindow()->objectName(), "ResultsVertAcrWin");
  EXPECT_EQ(view.tableWindow()->objectName(), "ResultsWin");
  EXPECT_TRUE(h.prompter.messages().empty());

  // Periods as rows, default format " %8.0f ": period t's line holds x(t) then u(t).
  const Model& model = h.window->workbench().model;
  const ResultsPlacement& place = view.placement();
  ASSERT_EQ(place.rowHeadingOrigin.y(), place.tableOrigin.y());
  for (int t = 0; t <= T; ++t) {
    SCOPED_TRACE(t);
    const std::string acronym =
        QString::fromStdString(model.periods.acronyms.at(t)).trimmed().toStdString();
    const int y = rowHeadingY(view, acronym.empty() ? std::to_string(t) : acronym);
    ASSERT_GE(y, 0);
    std::vector<std::string> expected{formatted(" %8.0f ", reference->xs(1, t))};
    if (t < T) expected.push_back(formatted(" %8.0f ", reference->us(1, t)));
    EXPECT_EQ(lineTexts(view, y), expected);
  }

  // Preferences for Results: format 00.00 and periods as columns, then Display: QLP with the
  // desired paths.
  h.fill = [](QDialog& d) {
    for (QButtonGroup* g : d.findChildren<QButtonGroup*>()) {
      for (int id : {778, 3454, 3300, 3400}) {
        if (QAbstractButton* b = g->button(id)) b->click();
      }
    }
    d.accept();
    return static_cast<int>(QDialog::Accepted);
  };
  h.window->dispatch(167);
  h.window->dispatch(156);
  EXPECT_EQ(h.dialogs, (std::vector<std::string>{"PrefResults", "DISPLAYS"}));
  EXPECT_EQ(h.window->workbench().resultsFormat, 778);
  ASSERT_TRUE(view.table().has_value());
  EXPECT_FALSE(view.table()->periodsAsRows);
  // The state's line reads x(0..T) in the new format; the desired line its targets.
  const std::string state =
      QString::fromStdString(model.states.acronyms.at(0)).trimmed().toStdString();
  int y = -1;
  for (const PlacedText& t : view.rowHeadingWindow()->texts()) {
    if (t.text.trimmed().startsWith(QString::fromStdString(state)) && !t.text.contains("des"))
      y = t.y;
  }
  ASSERT_GE(y, 0);
  std::vector<std::string> expected;
  for (int t = 0; t <= T; ++t) expected.push_back(formatted(" %10.2f ", reference->xs(1, t)));
  EXPECT_EQ(lineTexts(view, y), expected);
  // The criterion value in the same format.
  bool criterionShown = false;
  for (const PlacedText& t : view.tableWindow()->texts()) {
    criterionShown |= t.text.trimmed().toStdString() == formatted(" %10.2f ", reference->criterion);
  }
  EXPECT_TRUE(criterionShown);
}

TEST(MainWindowSolve, CompareWithAScriptedMethodChoice) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "learn1.ovi"));
  h.fill = [](QDialog& d) {
    if (d.objectName() == "METHOD") {
      for (QButtonGroup* g : d.findChildren<QButtonGroup*>()) {
        for (int id : {1618, 1620}) {
          if (QAbstractButton* b = g->button(id)) b->click();
        }
      }
    }
    d.accept();
    return static_cast<int>(QDialog::Accepted);
  };
  h.window->dispatch(137);
  EXPECT_EQ(h.dialogs, std::vector<std::string>{"METHOD"});
  Workbench& wb = h.window->workbench();
  EXPECT_EQ(wb.results.ran.compare, (std::array<bool, 5>{true, true, false, false, false}));
  EXPECT_EQ(wb.results.display.selector, 3328);  // HCFR-CE
  // The progress bar counted every run and is put away.
  EXPECT_EQ(h.window->progressBar()->maximum(), wb.model.dims.nmc.value);
  EXPECT_EQ(h.window->progressBar()->value(), wb.model.dims.nmc.value);
  EXPECT_FALSE(h.window->progressBar()->isVisibleTo(h.window.get()));

  ResultsView& view = *h.window->resultsView();
  ASSERT_TRUE(view.isVisibleTo(h.window.get()));
  std::set<std::string> headings;
  for (const PlacedText& t : view.columnHeadingWindow()->texts()) {
    headings.insert(t.text.trimmed().toStdString());
  }
  EXPECT_TRUE(headings.count("HCFR") == 1 && headings.count("CE") == 1);
  EXPECT_TRUE(headings.count("OLF") == 0);
  // Each method's criterion line shows the criterion of its stored run.
  std::set<std::string> drawn;
  for (const PlacedText& t : view.tableWindow()->texts())
    drawn.insert(t.text.trimmed().toStdString());
  for (const char* method : {"HCFR", "CE"}) {
    ASSERT_NE(wb.results.find(method), nullptr);
    EXPECT_TRUE(drawn.count(formatted(" %8.0f ", wb.results.find(method)->solution.criterion)) == 1)
        << method;
  }

  // Compare: Print asks for the method, then the debug file, then the sheet, and writes the file.
  h.dialogs.clear();
  h.prompter.clear();
  const std::string debug = dir.file("compare.dbg");
  h.prompter.scriptFileName(debug);
  h.window->dispatch(138);
  EXPECT_EQ(h.dialogs, (std::vector<std::string>{"METHOD", "DebugPrintSheet"}));
  ASSERT_FALSE(h.prompter.messages().empty());
  EXPECT_EQ(h.prompter.messages()[0].text,
            "Please provide debug file name in the following dialog box.");
  EXPECT_TRUE(std::filesystem::exists(debug));
  EXPECT_FALSE(wb.debugFile.isOpen());

  // Stochastic w/o Updating runs after its own method dialog.
  h.dialogs.clear();
  h.window->dispatch(141);
  EXPECT_EQ(h.dialogs, std::vector<std::string>{"METHOD_WO"});
}

// The runs go to a worker thread: the window stays live, and Cancel stops them after the run in
// hand, keeping no result and leaving the generator where it was.
TEST(MainWindowSolve, CancelledComparisonKeepsNothing) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "learn1.ovi"));
  h.fill = [](QDialog& d) {
    for (QButtonGroup* g : d.findChildren<QButtonGroup*>())
      if (QAbstractButton* b = g->button(1620)) b->click();  // CE
    d.accept();
    return static_cast<int>(QDialog::Accepted);
  };

  Workbench& wb = h.window->workbench();
  wb.model.dims.nmc.set(400);
  const float seed = wb.random.quarnsSeed;
  bool disabledWhileRunning = false;
  QObject::connect(h.window->progressBar(), &QProgressBar::valueChanged, h.window.get(),
                   [&](int value) {
                     if (value != 1) return;
                     disabledWhileRunning = !h.window->menuBar()->isEnabled();
                     h.window->cancelButton()->click();
                   });
  h.window->dispatch(137);
  EXPECT_TRUE(wb.results.ran.compare[ovaro::kCe]);
  EXPECT_TRUE(disabledWhileRunning);
  EXPECT_LT(h.window->progressBar()->value(), 400);
  EXPECT_EQ(wb.results.find("CE"), nullptr);
  EXPECT_EQ(wb.random.quarnsSeed, seed);
  EXPECT_EQ(h.window->statusBar()->currentMessage().toStdString(),
            "Compare cancelled: nothing kept");
  EXPECT_TRUE(h.window->menuBar()->isEnabled());
  EXPECT_FALSE(h.window->cancelButton()->isVisibleTo(h.window.get()));
}

// Data: Size on a model with data grows it through the transformation (old cells kept, old
// results gone); Delete a State Variable takes the new state out again.
TEST(MainWindowModel, SizeAndTransformationsReshapeTheModel) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "track1.ovi"));
  Workbench& wb = h.window->workbench();
  const TextMatrix a = *wb.model.matrix(MatrixId::A);
  h.window->dispatch(133);
  ASSERT_NE(wb.results.find("QLP"), nullptr);
  h.fill = [](QDialog& d) {
    if (auto* size = qobject_cast<SizeDialog*>(&d)) size->field(303)->setText("2");
    if (auto* del = qobject_cast<DeleteElemDialog*>(&d)) del->field()->setText("2");
    d.accept();
    return static_cast<int>(QDialog::Accepted);
  };
  h.prompter.setAnswerYes(true);
  h.window->dispatch(65);
  EXPECT_EQ(wb.model.dims.n.value, 2);
  ASSERT_EQ(wb.model.matrix(MatrixId::A)->rows(), 2);
  EXPECT_EQ(wb.model.matrix(MatrixId::A)->cell(0, 0), a.cell(0, 0));
  EXPECT_EQ(wb.results.find("QLP"), nullptr);
  h.window->dispatch(121);
  EXPECT_EQ(wb.model.dims.n.value, 1);
  EXPECT_EQ(*wb.model.matrix(MatrixId::A), a);
}

}  // namespace
}  // namespace ovaro::ui
