// The workbench's main window driven through its command table, with a scripted prompter and
// scripted dialogs.
#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QSettings>
#include <QSpinBox>
#include <QStatusBar>
#include <QTableWidget>
#include <array>
#include <filesystem>

#include "model/example_table.h"
#include "model/model_file.h"
#include "results/results_table.h"
#include "solve/drivers.h"
#include "ui/dialogs/examples_browser.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/harness.h"
#include "ui/plots/criterion_summary_window.h"
#include "ui/results/table_copy.h"
#include "ui/results_view.h"

namespace ovaro::ui {
namespace {

using test::example;
using test::exampleCopy;
using test::Harness;
using Texts = std::vector<std::string>;

std::string serialized(const Model& model) {
  RecordingPrompter quiet;
  std::string text;
  serializeModel(model, "m.ovi", text, quiet);
  return text;
}

// All actions reachable from a menu, cascades included.
std::vector<QAction*> actionsOf(QMenu* menu) {
  std::vector<QAction*> out;
  for (QAction* a : menu->actions()) {
    if (a->menu() != nullptr) {
      for (QAction* b : actionsOf(a->menu())) out.push_back(b);
    } else if (!a->isSeparator()) {
      out.push_back(a);
    }
  }
  return out;
}

// Every command of the menu bar (tests/data/menu_commands.txt) and every example has its item,
// label and handler, and the menus hold nothing else; each of the five cascades of
// File: Examples holds every example once.
TEST(MainWindowCommands, EveryCommandHasItsMenuItemLabelAndHandler) {
  Harness h;
  std::multiset<int> inMenus, listed;
  for (QAction* top : h.window->menuBar()->actions())
    for (QAction* a : actionsOf(top->menu())) inMenus.insert(a->data().toInt());
  std::vector<std::pair<int, std::string>> commands;
  for (const std::string& line : testing::dataLines("menu_commands.txt"))
    commands.emplace_back(std::stoi(line), line.substr(line.find(' ') + 1));
  for (const ExampleEntry& e : exampleTable()) {
    commands.emplace_back(e.commandId, e.description);
    for (int k = 0; k < 4; ++k) listed.insert(e.commandId);  // one item in each cascade
  }
  ASSERT_GT(commands.size(), 140u);
  for (const auto& [id, label] : commands) {
    SCOPED_TRACE(id);
    EXPECT_TRUE(h.window->handles(id));
    ASSERT_NE(h.window->action(id), nullptr);
    EXPECT_EQ(h.window->action(id)->text().toStdString(), label);
    listed.insert(id);
  }
  EXPECT_EQ(inMenus, listed);
  // The examples browser has a handler but no menu item.
  EXPECT_TRUE(h.window->handles(13));
  EXPECT_EQ(h.window->action(13), nullptr);
  QMenu* cascades = nullptr;
  for (QAction* a : h.window->menuBar()->actions()[0]->menu()->actions())
    if (a->text() == "Examples") cascades = a->menu();
  ASSERT_TRUE(cascades != nullptr && cascades->actions().size() == 5);
  for (std::size_t k = 0; k < 5; ++k) {
    const QAction* cascade = cascades->actions()[static_cast<qsizetype>(k)];
    EXPECT_EQ(cascade->text().toStdString(), exampleCascades()[k].caption);
    EXPECT_EQ(actionsOf(cascade->menu()).size(), exampleTable().size()) << k;
  }
}

// A command is alive when it shows a message, opens a dialog, or changes the window. Only the
// menu headings and the font placeholder do nothing, as they are meant to. (Exit, Save, the
// text-area edits and the toggles change nothing a message or title shows; others test them.)
TEST(MainWindowCommands, NoCommandIsSilentlyDead) {
  const std::set<int> quiet = {205, 210, 224, 225, 226, 170};
  const std::set<int> skipped = {29, 25, 40, 41, 42, 43, 44, 45, 168, 2908, 2916};
  testing::TempDir dir;
  const std::string model = exampleCopy(dir, "track1.ovi");
  for (int id : allCommandIds()) {
    if (skipped.count(id) != 0) continue;
    Harness h(model);
    h.prompter.scriptFileName(std::nullopt);  // any file dialog is cancelled
    const std::string before = h.title();
    h.window->dispatch(id);
    const bool acted = !h.prompter.messages().empty() || !h.dialogs.empty() ||
                       h.title() != before || !h.prompter.fileRequests().empty() ||
                       h.window->resultsView()->isVisibleTo(h.window.get());
    EXPECT_EQ(acted, quiet.count(id) == 0) << id;
  }
}

// Commands that refuse or are not there yet only explain themselves, each in its words
// (tests/data/ui_command_messages.txt), and ask for no file.
TEST(MainWindowCommands, CommandsThatOnlyExplainShowTheirMessages) {
  using Change = void (*)(Model&);
  const std::tuple<const char*, bool, Change, std::vector<int>> cases[] = {
      {"placeholders", false, nullptr, {180, 27, 158, 142, 143, 147, 148}},
      {"empty model", false, nullptr, {cmd::kSolveQlp}},
      {"deterministic", true, nullptr, {76, 77, 78}},
      {"parameter uncertainty", true, [](Model& m) { m.flags.stochTerms = 1724; }, {77, 78}},
      {"no policy effect", true, [](Model& m) { m.flags.policyToParam = 406; }, {80}},
      {"lead", true, [](Model& m) { m.flags.forwardVars = 405, m.dims.maxLead.set(4); }, {71}}};
  for (const auto& [section, track, change, ids] : cases) {
    Harness h(track ? example("track1.ovi") : "");
    if (change) change(h.window->workbench().model);
    for (int id : ids) h.window->dispatch(id);
    EXPECT_EQ(testing::shown(h.prompter), testing::dataSection("ui_command_messages.txt", section));
    EXPECT_TRUE(h.prompter.fileRequests().empty()) << section;
    // Under parameter uncertainty its own terms are entered.
    EXPECT_EQ(h.dialogs, ids.front() == 77 ? Texts{"DataInStoch"} : Texts{}) << section;
  }
}

// The title and the current file through Open, Save As, an example and Clear; each new model
// takes the old results away.
TEST(MainWindowFile, TitleAndResultsThroughOpenSaveAsExamplesAndClear) {
  testing::TempDir dir;
  const std::string track = exampleCopy(dir, "track1.ovi");
  Harness h(track);
  h.window->dispatch(cmd::kSolveQlp);
  // Open cancelled: title unchanged, modified flag cleared although nothing was read.
  QTest::keyClicks(h.window->textArea(), "note");
  EXPECT_EQ(h.window->shellState().modified, 1);
  h.prompter.scriptAnswer(Answer::No);  // do not save the note
  h.run(cmd::kOpen, {std::nullopt});
  EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
  EXPECT_EQ(h.window->shellState().modified, 0);
  EXPECT_EQ(h.texts(), Texts{"Save current changes in track1.ovi?"});
  EXPECT_EQ(h.prompter.messages()[0].buttons, Buttons::YesNoCancel);
  // Open a file that cannot be read: message, and the model keeps its file and its results.
  h.prompter.clear();
  h.run(cmd::kOpen, {dir.file("missing.ovi")});
  EXPECT_EQ(h.texts(), Texts{"Could not read file missing.ovi!"});
  EXPECT_EQ(h.window->shellState().fileName, track);
  EXPECT_TRUE(h.holdsResults());
  // Open the example; then Save As writes a copy that reads back equal.
  h.run(cmd::kOpen, {example("infl2.ovi")});
  EXPECT_EQ(h.title(), "Ovaro - infl2.ovi");
  EXPECT_FALSE(h.holdsResults());
  const std::string copy = dir.file("copy.ovi");
  h.run(cmd::kSaveAs, {copy});
  EXPECT_EQ(h.title(), "Ovaro - copy.ovi");
  Model readBack;
  ASSERT_EQ(readModelFile(copy, readBack, h.prompter), 1);
  EXPECT_EQ(serialized(readBack), serialized(h.window->workbench().model));
  // An example: no save prompt despite unsaved edits; the title names the example while the
  // current file stays the one last saved.
  h.window->dispatch(cmd::kSolveQlp);
  ASSERT_TRUE(h.holdsResults());
  QTest::keyClicks(h.window->textArea(), "x");
  h.prompter.clear();
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(OVARO_SOURCE_DIR);  // where the workbench looks for examples
  h.window->dispatch(defaultExample().commandId);
  std::filesystem::current_path(cwd);
  EXPECT_FALSE(h.holdsResults());
  EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
  EXPECT_EQ(h.dialogs.back(), "DescWin");  // the loaded model's description opens
  EXPECT_EQ(h.window->shellState().fileName, copy);
  EXPECT_EQ(testing::shown(h.prompter),
            Texts{"Model Loaded: " + std::string(defaultExample().description)});
  // Clear: the title forgets the file, the window does not; Save writes to it without asking.
  h.window->dispatch(cmd::kSolveQlp);
  ASSERT_TRUE(h.holdsResults());
  h.window->dispatch(cmd::kClear);
  EXPECT_FALSE(h.holdsResults());
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_EQ(h.window->shellState().fileName, copy);
  const std::size_t requests = h.prompter.fileRequests().size();
  h.window->dispatch(cmd::kSave);
  EXPECT_EQ(h.prompter.fileRequests().size(), requests);
  ASSERT_EQ(readModelFile(copy, readBack, h.prompter), 1);
  EXPECT_EQ(readBack.dims.n.value, 0);
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
    const FileRequest& r = h.prompter.fileRequests()[0];
    EXPECT_EQ(r.kind, FileRequest::Kind::Save);
    EXPECT_EQ(r.filters[0].label + " " + r.filters[0].pattern, "OVARO Files (*.ovi) *.ovi");
    // Cancel at the prompt keeps the window too; No lets it close.
    h.prompter.scriptAnswer(Answer::Cancel);
    EXPECT_FALSE(h.window->close());
    h.prompter.scriptAnswer(Answer::No);
    EXPECT_TRUE(h.window->close());
  }
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
  // Unmodified: no prompt at all.
  Harness clean;
  EXPECT_TRUE(clean.window->close());
  EXPECT_TRUE(clean.prompter.messages().empty());
}

// The toggles flip their preference and check mark; Clear restores the start-up preferences.
TEST(MainWindowPreferences, TogglesFollowTheirPreferenceAndClearRestoresThem) {
  Harness h;
  using P = ShellPreferences;
  const std::pair<int, int P::*> toggles[] = {{168, &P::warningMessages},
                                              {2916, &P::askScenarioQuestion},
                                              {2908, &P::debugImportedMatrices}};
  for (const auto& [id, flag] : toggles) {
    const int before = h.window->workbench().shell.*flag;
    h.window->dispatch(id);
    EXPECT_EQ(h.window->workbench().shell.*flag, 1 - before) << id;
    EXPECT_EQ(h.window->action(id)->isChecked(), before == 0) << id;
  }
  h.window->dispatch(cmd::kClear);
  EXPECT_FALSE(h.window->action(2916)->isChecked());
  EXPECT_TRUE(h.window->action(2908)->isChecked());
}

TEST(MainWindowEdit, TextAreaLimitEditMenuAndFindReplace) {
  Harness h;
  QPlainTextEdit* text = h.window->textArea();
  text->setPlainText(QString(static_cast<int>(kTextAreaLimit) - 1, QChar('a')));
  text->moveCursor(QTextCursor::End);
  QTest::keyClicks(text, "bc");
  EXPECT_EQ(text->toPlainText().size(), static_cast<qsizetype>(kTextAreaLimit));
  EXPECT_EQ(h.texts(), Texts{"Edit control out of space."});
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
  for (const bool filled : {false, true}) {
    if (filled) QTest::keyClicks(text, "one two one");
    filled ? QApplication::clipboard()->setText("two") : QApplication::clipboard()->clear();
    emit edit->aboutToShow();
    EXPECT_EQ(h.window->action(40)->isEnabled(), filled);
    EXPECT_EQ(h.window->action(43)->isEnabled(), filled);
  }
  // Replace All grows the text and still ends; a missing text is reported.
  h.prompter.clear();
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::ReplaceAll, "one", "one one"), 2);
  EXPECT_EQ(text->toPlainText(), "one one two one one");
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::ReplaceAll, "zzz", "y"), 0);
  EXPECT_EQ(h.texts(), Texts{"Text not found!"});
  text->moveCursor(QTextCursor::Start);
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::FindNext, "two", {}), 1);
  EXPECT_EQ(h.window->findReplace(FindReplaceAction::Replace, "two", "2"), 1);
  EXPECT_EQ(text->toPlainText(), "one one 2 one one");
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
  h.window->dispatch(cmd::kSolveQlp);
  ASSERT_TRUE(view.isVisibleTo(h.window.get()));
  EXPECT_TRUE(h.prompter.messages().empty());
  EXPECT_EQ(h.window->statusBar()->currentMessage(),
            "QLP solved: criterion " + QString::number(solution.criterion, 'g', 6));
  expectReferenceShown(770);
  // Preferences for Results: format 00.00 and periods as columns, then Display: QLP.
  h.fill = test::clicking({778, 3454, 3300, 3400});
  h.window->dispatch(cmd::kPrefResults);
  h.window->dispatch(cmd::kDisplay);
  EXPECT_EQ(h.dialogs, (Texts{"PrefResults", "DISPLAYS"}));
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
  h.fill = test::clicking({1618, 1620});
  h.window->dispatch(cmd::kCompare);
  EXPECT_EQ(h.dialogs, Texts{"METHOD"});
  Workbench& wb = h.window->workbench();
  EXPECT_EQ(wb.results.ran.compare, (std::array<bool, 5>{true, true, false, false, false}));
  EXPECT_EQ(wb.results.display.selector, 3328);  // HCFR-CE
  EXPECT_TRUE(wb.results.find("HCFR") != nullptr && wb.results.find("CE") != nullptr);
  EXPECT_TRUE(h.holdsResults());
  // The progress bar counted every run and is put away.
  EXPECT_EQ(h.window->progressBar()->value(), wb.model.dims.nmc.value);
  EXPECT_FALSE(h.window->progressBar()->isVisibleTo(h.window.get()));
  // The criterion summary gives the mean difference of the pair over the runs.
  auto* summary = h.window->findChild<CriterionSummaryWindow*>();
  ASSERT_TRUE(summary != nullptr && summary->pairsTable()->rowCount() == 1);
  EXPECT_EQ(summary->pairsTable()->item(0, 0)->text(), "HCFR - CE");
  double sum = 0;
  for (const auto& run : wb.results.comparison->criteria) sum += run[0] - run[1];
  EXPECT_EQ(summary->pairsTable()->item(0, 1)->text(),
            summaryNumber(sum / static_cast<double>(wb.results.comparison->runs)));
  // The spread plot draws CE's median line in blue.
  h.fill = nullptr;
  h.fills.push_back(test::accepted);
  h.window->dispatch(cmd::kPlotSpread);
  auto* spread = h.window->findChild<PlotWindow*>("PlotWinSpread");
  ASSERT_NE(spread, nullptr);
  const QImage image = spread->canvas()->grab().toImage();
  int ceBlue = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) ceBlue += (image.pixel(x, y) & 0xffffff) == 0x0000ff;
  EXPECT_GT(ceBlue, 50);
  // Compare: Print asks for the method, then the debug file, then the sheet, and writes the file.
  h.fill = test::clicking({1618, 1620});
  h.dialogs.clear();
  h.prompter.clear();
  const std::string debug = dir.file("compare.dbg");
  h.run(cmd::kComparePrint, {debug});
  EXPECT_EQ(h.dialogs, (Texts{"METHOD", "DebugPrintSheet"}));
  EXPECT_EQ(h.texts().at(0), "Please provide debug file name in the following dialog box.");
  EXPECT_TRUE(std::filesystem::exists(debug));
  EXPECT_FALSE(wb.debugFile.isOpen());
  // Stochastic w/o Updating runs after its own method dialog.
  h.dialogs.clear();
  h.window->dispatch(141);
  EXPECT_EQ(h.dialogs, Texts{"METHOD_WO"});
}

// The runs go to a worker thread: the window stays live, and Cancel stops them after the run in
// hand, keeping no result and leaving the generator where it was.
TEST(MainWindowSolve, CancelledComparisonKeepsNothing) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "learn1.ovi"));
  h.fill = test::clicking({1620});  // CE
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
  h.window->dispatch(cmd::kCompare);
  EXPECT_TRUE(wb.results.ran.compare[1]);
  EXPECT_TRUE(disabledWhileRunning);
  EXPECT_LT(h.window->progressBar()->value(), 400);
  EXPECT_EQ(wb.results.find("CE"), nullptr);
  EXPECT_EQ(wb.random.quarnsSeed, seed);
  EXPECT_EQ(h.window->statusBar()->currentMessage(), "Compare cancelled: nothing kept");
  EXPECT_TRUE(h.window->menuBar()->isEnabled());
  EXPECT_FALSE(h.window->cancelButton()->isVisibleTo(h.window.get()));
}

// The browser (command 13) filters by a cascade's column and loads the example chosen with Enter.
TEST(MainWindowExamples, BrowserFiltersByACascadeAndLoadsOnEnter) {
  Harness h;
  std::vector<int> shown;
  std::string chosen;
  QPointer<ExamplesBrowser> browser;
  h.fills.push_back([&](QDialog& d) {
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
  });
  h.window->dispatch(13);
  EXPECT_EQ(h.dialogs, (Texts{"ExamplesWin", "DescWin"}));
  std::size_t expected = 0;
  for (const ExampleEntry& e : exampleTable()) expected += e.stochasticTerms == "Measurement error";
  ASSERT_GE(expected, 2u);
  EXPECT_EQ(shown.size(), expected);
  for (int id : shown) EXPECT_EQ(exampleLibrary().row(id)->stochasticTerms, "Measurement error");
  EXPECT_EQ(testing::shown(h.prompter), Texts{"Model Loaded: " + chosen});
  EXPECT_EQ(h.window->workbench().model.flags.stochTerms, 1728);
  EXPECT_FALSE(browser);  // the browser lived only while it ran
}

// File: Import System Matrices fills the matrix chosen in the entry dialog from its file; File:
// Import VELD echoes to the debug file and leaves an untitled model.
TEST(MainWindowFile, ImportsFillTheModelAndEchoToTheDebugFile) {
  testing::TempDir dir;
  Harness h(example("track1.ovi"));
  testing::spit(dir.file("b.dma"), "0.75\n");
  h.fills.push_back([](QDialog& d) {
    dynamic_cast<MatrixEntryDialog&>(d).buttons()->button(matrixButtonId(MatrixId::B))->click();
    d.reject();
    return 0;
  });
  h.run(cmd::kImportSystem, {dir.file("b.dma"), dir.file("b.dbg")});
  EXPECT_EQ(h.window->workbench().model.matrix(MatrixId::B)->cell(0, 0), "0.75");
  EXPECT_NE(testing::slurp(dir.file("b.dbg")).find(" B "), std::string::npos);
  h.run(cmd::kImportVeld, {testing::dataPath("interchange/learn1.vld"), dir.file("import.dbg")});
  EXPECT_EQ(h.window->workbench().model.acronym, "LEARN1");
  EXPECT_EQ(h.title(), "Ovaro - (untitled)");
  EXPECT_EQ(h.texts().back(), "Importation Completed");
  EXPECT_NE(testing::slurp(dir.file("import.dbg")).find("L7  L8  L9  L10 L11 L12 \n"),
            std::string::npos);
}

// Prose, then a version and a size that are not whole numbers: refused, and Save spares them.
// Named on the command line, a file that cannot be read is named in the message and the title.
TEST(MainWindowSession, AFileThatIsNotAModelChangesNothingAndSaveSparesIt) {
  testing::TempDir dir;
  Harness h(exampleCopy(dir, "track1.ovi"));
  const std::string before = serialized(h.window->workbench().model), notes = dir.file("notes.md");
  for (const char* text :
       {"# Notes\n", "3.21~B~b~1~1~0~1~4~0~20~1~0~0~0~", "321~B~b~1~1~0~1~4~0~20~1~0~0~0.5~"}) {
    testing::spit(notes, text);
    h.prompter.clear();
    h.run(cmd::kOpen, {notes});
    h.window->dispatch(cmd::kSave);
    EXPECT_EQ(h.texts(), Texts{"Could not read file notes.md!"}) << text;
    EXPECT_EQ(h.title(), "Ovaro - track1.ovi");
    EXPECT_EQ(serialized(h.window->workbench().model), before);
    EXPECT_EQ(testing::slurp(notes), text);
  }
  Harness named("/nonexistent/dir/nothere.ovi");
  EXPECT_EQ(testing::shown(named.prompter), Texts{"Ovaro: File nothere.ovi cannot be read!"});
  EXPECT_EQ(named.prompter.messages()[0].icon, Icon::Exclamation);
  EXPECT_EQ(named.title(), "Ovaro - nothere.ovi");
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
    EXPECT_TRUE(h.holdsResults());                    // F5 solved
    h.fill = [](QDialog& d) {                         // Preferences: Threads for Monte Carlo runs
      d.findChild<QSpinBox*>("threads")->setValue(3);
      return test::accepted(d);
    };
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

// The leak checker of the sanitizer build reads this. The system's font library keeps a small
// cache alive until the process ends; that is not a leak of ours.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
