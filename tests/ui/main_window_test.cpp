// The workbench's main window driven through its command table, with a scripted prompter and
// scripted dialogs, on the offscreen platform.
#include "ui/main_window.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QButtonGroup>
#include <QClipboard>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTest>
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <set>
#include <utility>
#include <vector>

#include "model/example_table.h"
#include "model/model_file.h"
#include "results/results_store.h"
#include "results/results_table.h"
#include "solve/drivers.h"
#include "support/temp_dir.h"
#include "support/test_data.h"
#include "ui/dialogs/examples_browser.h"
#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/menu_table.h"
#include "ui/qt_app.h"
#include "ui/results/table_copy.h"
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
  bool resultsShown() const {
    return window->resultsView()->isVisibleTo(window.get()) ||
           window->resultsView()->table().has_value();
  }
  void activate() const {
    window->show();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
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

// A dialog script that clicks the buttons `ids` wherever the dialog has them, then accepts.
std::function<int(QDialog&)> clicking(std::vector<int> ids) {
  return [ids](QDialog& d) {
    for (QButtonGroup* g : d.findChildren<QButtonGroup*>())
      for (int id : ids)
        if (QAbstractButton* b = g->button(id)) b->click();
    return test::accepted(d);
  };
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

// Every command of the menu bar (tests/data/menu_commands.txt) and every example has its item,
// label and handler, and the menus hold nothing else.
TEST(MainWindowCommands, EveryCommandHasItsMenuItemLabelAndHandler) {
  Harness h;
  std::vector<QAction*> inMenus;
  for (QAction* top : h.window->menuBar()->actions()) collectActions(top->menu(), inMenus);
  std::set<int> menuIds;
  for (QAction* a : inMenus) menuIds.insert(a->data().toInt());
  std::vector<std::pair<int, std::string>> commands;
  for (const std::string& line : testing::dataLines("menu_commands.txt"))
    commands.emplace_back(std::stoi(line), line.substr(line.find(' ') + 1));
  for (const ExampleEntry& e : exampleTable()) commands.emplace_back(e.commandId, e.description);
  ASSERT_GT(commands.size(), 140u);
  for (const auto& [id, label] : commands) {
    SCOPED_TRACE(id);
    EXPECT_TRUE(h.window->handles(id));
    ASSERT_NE(h.window->action(id), nullptr);
    EXPECT_EQ(h.window->action(id)->text().toStdString(), label);
    EXPECT_EQ(menuIds.count(id), 1u);
  }
  EXPECT_EQ(menuIds.size(), commands.size());
  // The examples browser has a handler but no menu item.
  EXPECT_TRUE(h.window->handles(13));
  EXPECT_EQ(h.window->action(13), nullptr);
  // Each of the five cascades of File: Examples holds every example once.
  QMenu* examples = nullptr;
  for (QAction* a : h.window->menuBar()->actions()[0]->menu()->actions())
    if (a->text() == "Examples") examples = a->menu();
  ASSERT_NE(examples, nullptr);
  ASSERT_EQ(examples->actions().size(), 5);
  for (std::size_t k = 0; k < 5; ++k) {
    const QAction* cascade = examples->actions()[static_cast<qsizetype>(k)];
    EXPECT_EQ(cascade->text().toStdString(), exampleCascades()[k].caption);
    std::vector<QAction*> items;
    collectActions(cascade->menu(), items);
    std::multiset<int> ids;
    for (QAction* a : items) ids.insert(a->data().toInt());
    std::multiset<int> expected;
    for (const ExampleEntry& e : exampleTable()) expected.insert(e.commandId);
    EXPECT_EQ(ids, expected) << k;
  }
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
    // Solving the empty model points to Data: Size.
    Harness h;
    EXPECT_EQ(h.title(), "Ovaro - (untitled)");
    h.window->dispatch(133);
    ASSERT_EQ(h.texts().size(), 1u);
    EXPECT_NE(h.texts()[0].find("under Data: Size,"), std::string::npos);
  }
  {
    Harness h(example("track1.ovi"));
    EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
    EXPECT_TRUE(h.prompter.messages().empty());
    EXPECT_EQ(h.window->workbench().model.dims.n.value, 1);
    EXPECT_EQ(h.window->shellState().modified, 0);
  }
  // A missing file: the message names it, and the title still shows it.
  Harness h("/nonexistent/dir/nothere.ovi");
  EXPECT_EQ(testing::shown(h.prompter),
            std::vector<std::string>{"Ovaro: File nothere.ovi cannot be read!"});
  EXPECT_EQ(h.prompter.messages()[0].icon, Icon::Exclamation);
  EXPECT_EQ(h.title(), "Ovaro - nothere.ovi");
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
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Save current changes in (untitled)?"});
  EXPECT_EQ(h.prompter.messages()[0].buttons, Buttons::YesNoCancel);

  // Open a file that cannot be read: message, then the name is forgotten.
  h.prompter.clear();
  h.prompter.scriptFileName(dir.file("missing.ovi"));
  h.window->dispatch(22);
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Could not read file missing.ovi!"});
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

  // Clear: the title forgets the file, the window does not; Save writes to it without asking.
  h.window->dispatch(28);
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
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
  std::filesystem::current_path(cwd);
  EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
  EXPECT_EQ(h.dialogs.back(), "DescWin");  // the loaded model's description opens
  EXPECT_EQ(h.window->shellState().fileName, copy);
  EXPECT_EQ(testing::shown(h.prompter),
            std::vector<std::string>{"Model Loaded: " + std::string(defaultExample().description)});
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
    std::filesystem::remove(target);
    h.window->show();
    QTest::keyClicks(h.window->textArea(), "edit");
    h.prompter.scriptAnswer(Answer::Yes);
    EXPECT_TRUE(h.window->close());
    EXPECT_TRUE(h.prompter.fileRequests().empty());
    EXPECT_EQ(testing::slurp(target), testing::slurp(example("infl2.ovi")));
  }
  // Unmodified: no prompt at all.
  Harness h;
  h.window->show();
  EXPECT_TRUE(h.window->close());
  EXPECT_TRUE(h.prompter.messages().empty());
}

TEST(MainWindowPreferences, TogglesAndPlaceholders) {
  Harness h;
  for (const auto& [id, flag] : std::vector<std::pair<int, int ShellPreferences::*>>{
           {168, &ShellPreferences::warningMessages},
           {2916, &ShellPreferences::askScenarioQuestion},
           {2908, &ShellPreferences::debugImportedMatrices}}) {
    const int before = h.window->workbench().shell.*flag;
    h.window->dispatch(id);
    EXPECT_EQ(h.window->workbench().shell.*flag, 1 - before) << id;
    EXPECT_EQ(h.window->action(id)->isChecked(), before == 0) << id;
  }
  // Clear restores the start-up preferences, and the check marks follow.
  h.window->dispatch(28);
  EXPECT_FALSE(h.window->action(2916)->isChecked());
  EXPECT_TRUE(h.window->action(2908)->isChecked());
  for (int id : {180, 27, 158, 142, 143, 147, 148}) h.window->dispatch(id);
  const std::string notYet = "Ovaro: This option not supported yet.";
  EXPECT_EQ(testing::shown(h.prompter),
            (std::vector<std::string>{
                "Ovaro: Help not yet implemented!", "Ovaro: Could not print file (untitled)",
                notYet + "\t\t\t\t\t\t\t\r Use 'Solve: Compare Print' instead", notYet, notYet,
                notYet, notYet}));
  EXPECT_EQ(h.prompter.messages()[0].icon, Icon::Exclamation);
  // Neither the updating variants nor the debug variant asked for a debug file.
  EXPECT_TRUE(h.prompter.fileRequests().empty());
}

TEST(MainWindowData, StochasticTermChecksComeBeforeTheDialogs) {
  Harness h(example("track1.ovi"));  // deterministic, no policy effect
  for (int id : {76, 77, 78}) h.window->dispatch(id);
  std::vector<std::string> captions;
  for (const Message& m : h.prompter.messages()) captions.push_back(m.caption);
  EXPECT_EQ(captions, (std::vector<std::string>{"Additive Noise Terms Not Defined!",
                                                "Uncertain Parameter Terms Not Defined!",
                                                "Measurement Error Terms Not Defined!"}));
  EXPECT_EQ(h.texts()[0],
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
  EXPECT_EQ(testing::shown(h.prompter),
            std::vector<std::string>{"Error: Maximum Lead must be 1, 2 or 3."});
}

TEST(MainWindowEdit, TextAreaLimitEditMenuAndFindReplace) {
  Harness h;
  QPlainTextEdit* text = h.window->textArea();
  text->setPlainText(QString(static_cast<int>(kTextAreaLimit) - 1, QChar('a')));
  text->moveCursor(QTextCursor::End);
  QTest::keyClicks(text, "bc");
  EXPECT_EQ(text->toPlainText().size(), static_cast<qsizetype>(kTextAreaLimit));
  EXPECT_EQ(h.texts(), std::vector<std::string>{"Edit control out of space."});
  EXPECT_EQ(h.prompter.messages()[0].icon, Icon::Stop);
  // Pasting past the limit is refused whole.
  QApplication::clipboard()->setText("xyz");
  h.window->dispatch(43);
  EXPECT_EQ(text->toPlainText().size(), static_cast<qsizetype>(kTextAreaLimit));
  EXPECT_EQ(h.prompter.messages().size(), 2u);

  // Undo is enabled exactly when the text area can undo; Paste when the clipboard holds text.
  text->setPlainText({});
  auto* edit = qobject_cast<QMenu*>(h.window->action(40)->associatedObjects().value(0));
  ASSERT_NE(edit, nullptr);
  QApplication::clipboard()->clear();
  emit edit->aboutToShow();
  EXPECT_FALSE(h.window->action(40)->isEnabled());
  EXPECT_FALSE(h.window->action(43)->isEnabled());
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
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::Replace, "two", "2"), 1);
  EXPECT_EQ(text->toPlainText(), "one one 2 one one");
}

std::string formatted(const char* format, double v) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, v);
  return QString(buffer).trimmed().toStdString();
}

// QLP from the menu draws the reference solution of the same model, solved here directly, in the
// chosen format and orientation; the table copies as tab-separated numbers, periods down, in
// either orientation on screen.
TEST(MainWindowSolve, QlpFromTheMenuShowsTheSolvedPathsInFormatAndOrientation) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "track1.ovi"));
  const Model& model = h.window->workbench().model;
  RecordingPrompter quiet;
  ResultsStore reference;
  reference.store({solveQlp(model, quiet, {}).value(), std::nullopt});
  const Solution& solution = reference.find("QLP")->solution;
  ResultsView& view = *h.window->resultsView();
  auto expectReferenceShown = [&](int format) {
    reference.display = h.window->workbench().results.display;
    const ResultsPlacement p =
        placeResults(*layoutResultsTable(model, reference, format), view.metrics());
    EXPECT_EQ(view.tableWindow()->texts(), p.table);
    EXPECT_EQ(view.rowHeadingWindow()->texts(), p.rowHeadings);
    EXPECT_EQ(view.columnHeadingWindow()->texts(), p.columnHeadings);
  };
  h.window->dispatch(133);
  ASSERT_TRUE(view.isVisibleTo(h.window.get()));
  EXPECT_TRUE(h.prompter.messages().empty());
  EXPECT_EQ(h.window->statusBar()->currentMessage(),
            "QLP solved: criterion " + QString::number(solution.criterion, 'g', 6));
  expectReferenceShown(770);
  // Preferences for Results: format 00.00 and periods as columns, then Display: QLP.
  h.fill = clicking({778, 3454, 3300, 3400});
  h.window->dispatch(167);
  h.window->dispatch(156);
  EXPECT_EQ(h.dialogs, (std::vector<std::string>{"PrefResults", "DISPLAYS"}));
  ASSERT_TRUE(view.table().has_value());
  EXPECT_FALSE(view.table()->periodsAsRows);
  expectReferenceShown(778);

  const QString copied = resultsTabText(*view.table());
  const QStringList lines = copied.split('\n');
  ASSERT_GE(lines.size(), solution.nt + 2);
  for (int t = 0; t <= solution.nt; ++t) {
    const QStringList cells = lines[t + 1].split('\t');
    ASSERT_GE(cells.size(), 3) << t;  // the period, the state, its desired path, ...
    EXPECT_NEAR(cells[1].toDouble(), solution.xs(1, t), 5e-3) << t;
  }
  h.activate();
  view.tableWindow()->setFocus();
  QTest::keySequence(view.tableWindow(), QKeySequence::Copy);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), copied);
}

TEST(MainWindowSolve, CompareWithAScriptedMethodChoice) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "learn1.ovi"));
  h.fill = clicking({1618, 1620});
  h.window->dispatch(137);
  EXPECT_EQ(h.dialogs, std::vector<std::string>{"METHOD"});
  Workbench& wb = h.window->workbench();
  EXPECT_EQ(wb.results.ran.compare, (std::array<bool, 5>{true, true, false, false, false}));
  EXPECT_EQ(wb.results.display.selector, 3328);  // HCFR-CE
  // The progress bar counted every run and is put away.
  EXPECT_EQ(h.window->progressBar()->value(), wb.model.dims.nmc.value);
  EXPECT_FALSE(h.window->progressBar()->isVisibleTo(h.window.get()));
  // The table shows the two methods side by side, each with the criterion of its stored run.
  const std::string text = renderResultsText(wb.model, wb.results, wb.resultsFormat);
  for (const char* method : {"HCFR", "CE"}) {
    ASSERT_NE(wb.results.find(method), nullptr);
    const std::size_t line = text.find(std::string("  Criterion ") + method + " =");
    ASSERT_NE(line, std::string::npos) << text;
    const std::string value = formatted(" %8.0f ", wb.results.find(method)->solution.criterion);
    EXPECT_EQ(text.find(value, line), line + 29 - value.size());  // ends in the value's field
  }
  EXPECT_TRUE(h.resultsShown());

  // Compare: Print asks for the method, then the debug file, then the sheet, and writes the file.
  h.dialogs.clear();
  h.prompter.clear();
  const std::string debug = dir.file("compare.dbg");
  h.prompter.scriptFileName(debug);
  h.window->dispatch(138);
  EXPECT_EQ(h.dialogs, (std::vector<std::string>{"METHOD", "DebugPrintSheet"}));
  EXPECT_EQ(h.texts().at(0), "Please provide debug file name in the following dialog box.");
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
  h.fill = clicking({1620});  // CE

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
  EXPECT_TRUE(wb.results.ran.compare[1]);
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
    return test::accepted(d);
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

// The browser (command 13) filters by a cascade's column and loads the example chosen with Enter.
TEST(MainWindowExamples, BrowserFiltersByACascadeAndLoadsOnEnter) {
  Harness h;
  std::vector<int> shown;
  std::string chosen;
  QPointer<ExamplesBrowser> browser;
  h.fill = [&](QDialog& d) {
    if (d.objectName() != "ExamplesWin") return 0;  // the loaded model's description
    browser = static_cast<ExamplesBrowser*>(&d);
    EXPECT_EQ(browser->shownIds().size(), exampleTable().size());
    QComboBox* terms = browser->filter(3);  // By Stochastic Terms
    terms->setCurrentIndex(terms->findText("Measurement error"));
    shown = browser->shownIds();
    browser->show();
    browser->list()->setCurrentRow(1);
    chosen = exampleLibrary().row(shown.at(1))->description;
    QTest::keyClick(browser->list(), Qt::Key_Return);
    EXPECT_FALSE(browser->isVisible());  // loading closes the browser
    return 0;
  };
  h.window->dispatch(13);
  std::size_t expected = 0;
  for (const ExampleEntry& e : exampleTable()) expected += e.stochasticTerms == "Measurement error";
  ASSERT_GE(expected, 2u);
  EXPECT_EQ(shown.size(), expected);
  for (int id : shown) EXPECT_EQ(exampleLibrary().row(id)->stochasticTerms, "Measurement error");
  EXPECT_EQ(testing::shown(h.prompter), std::vector<std::string>{"Model Loaded: " + chosen});
  EXPECT_EQ(h.window->workbench().model.flags.stochTerms, 1728);
  EXPECT_FALSE(browser);  // the browser lived only while it ran
}

// File: Import VELD echoes to the debug file and leaves an untitled model; File: Import System
// Matrices fills the matrix chosen in the entry dialog from its file.
TEST(MainWindowFile, ImportsFillTheModelAndEchoToTheDebugFile) {
  testing::TempDir dir;
  Harness h(example("track1.ovi"));
  h.prompter.scriptFileName(std::string(OVARO_SOURCE_DIR) + "/tests/data/interchange/learn1.vld");
  h.prompter.scriptFileName(dir.file("import.dbg"));
  h.window->dispatch(cmd::kImportVeld);
  EXPECT_EQ(h.window->workbench().model.acronym, "LEARN1");
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_EQ(h.texts().back(), "Importation Completed");
  EXPECT_NE(testing::slurp(dir.file("import.dbg")).find("L7  L8  L9  L10 L11 L12 \n"),
            std::string::npos);

  Harness m(example("track1.ovi"));
  testing::spit(dir.file("b.dma"), "0.75\n");
  m.fill = [](QDialog& d) {
    if (auto* entry = dynamic_cast<MatrixEntryDialog*>(&d))
      entry->buttons()->button(matrixButtonId(MatrixId::B))->click();
    d.reject();
    return static_cast<int>(QDialog::Rejected);
  };
  m.prompter.scriptFileName(dir.file("b.dma"));
  m.prompter.scriptFileName(dir.file("b.dbg"));
  m.window->dispatch(cmd::kImportSystem);
  EXPECT_EQ(m.window->workbench().model.matrix(MatrixId::B)->cell(0, 0), "0.75");
  EXPECT_NE(testing::slurp(dir.file("b.dbg")).find(" B "), std::string::npos);
}

// Open, Clear and an example each take the old results away.
TEST(MainWindowSession, AChangedModelTakesTheOldResultsAway) {
  testing::TempDir dir;
  const std::vector<std::function<void(Harness&)>> changes = {
      [&](Harness& h) {
        h.prompter.scriptFileName(exampleCopy(dir, "learn1.ovi")), h.window->dispatch(22);
      },
      [](Harness& h) { h.window->dispatch(28); },
      [](Harness& h) { h.window->dispatch(defaultExample().commandId); }};
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(OVARO_SOURCE_DIR);  // where the examples are found
  for (std::size_t i = 0; i < changes.size(); ++i) {
    Harness h(exampleCopy(dir, "track1.ovi"));
    h.window->dispatch(133);
    ASSERT_TRUE(h.resultsShown());
    changes[i](h);
    EXPECT_FALSE(h.resultsShown()) << i;
    h.prompter.clear();
    h.window->dispatch(156);  // Results: Display, QLP still chosen
    ASSERT_FALSE(h.texts().empty());
    EXPECT_TRUE(h.texts().back().starts_with("There are no results to display")) << i;
  }
  std::filesystem::current_path(cwd);
}

// Prose, then a version and a size that are not whole numbers: refused, and Save spares them.
TEST(MainWindowSession, AFileThatIsNotAModelChangesNothingAndSaveSparesIt) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "track1.ovi"));
  const std::string before = serialized(h.window->workbench().model), notes = dir.file("notes.md");
  for (const char* text :
       {"# Notes\n", "3.21~B~b~1~1~0~1~4~0~20~1~0~0~0~", "321~B~b~1~1~0~1~4~0~20~1~0~0~0.5~"}) {
    testing::spit(notes, text);
    h.prompter.clear();
    h.prompter.scriptFileName(notes);
    h.window->dispatch(22);
    h.window->dispatch(25);
    EXPECT_EQ(h.texts(), std::vector<std::string>{"Could not read file notes.md!"}) << text;
    EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
    EXPECT_EQ(serialized(h.window->workbench().model), before);
    EXPECT_EQ(testing::slurp(notes), text);
  }
}

// Standard keys, the modified mark, and what a restart keeps (in a private settings store).
TEST(MainWindowSession, ShortcutsModifiedMarkAndWhatARestartKeeps) {
  testing::TempDir dir;
  const std::string track = exampleCopy(dir, "track1.ovi");
  QSettings settings(QString::fromStdString(dir.file("ovaro.ini")), QSettings::IniFormat);
  {
    Harness h;
    h.window->useSettings(&settings);
    h.activate();
    h.window->setGeometry(40, 60, 640, 420);
    QTest::keyClicks(h.window->textArea(), "x");
    EXPECT_TRUE(h.window->isWindowModified());
    h.prompter.scriptAnswer(Answer::No);  // the save prompt before Open
    h.prompter.scriptFileName(track);
    QTest::keySequence(h.window.get(), QKeySequence("Ctrl+O"));
    EXPECT_EQ(h.window->shellState().fileName, track);
    EXPECT_FALSE(h.window->isWindowModified());
    for (const char* key : {"Ctrl+S", "Ctrl+Shift+S", "F5"})
      QTest::keySequence(h.window.get(), QKeySequence(key));
    EXPECT_EQ(h.prompter.fileRequests().size(), 2u);  // Open, then Save As (Save did not ask)
    EXPECT_TRUE(h.resultsShown());                    // F5 solved
    h.window->setDialogRunner([](QDialog& d) {        // Preferences: Threads for Monte Carlo runs
      d.findChild<QSpinBox*>("threads")->setValue(3);
      return d.accept(), static_cast<int>(QDialog::Accepted);
    });
    h.window->dispatch(4108);
    EXPECT_EQ(h.window->workbench().threads, 3);
    EXPECT_TRUE(h.window->close());
  }
  Harness h;
  h.window->useSettings(&settings);
  EXPECT_EQ(h.window->geometry().size(), QSize(640, 420));
  EXPECT_EQ(h.window->workbench().threads, 3);
  auto* menu = h.window->findChild<QMenu*>("RecentFiles");
  ASSERT_TRUE(menu != nullptr && menu->actions().size() == 1);
  menu->actions()[0]->trigger();
  EXPECT_EQ(h.window->shellState().fileName, track);
}

}  // namespace
}  // namespace ovaro::ui
