#include "ui/main_window.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QSessionManager>
#include <QSettings>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QTextCursor>
#include <QTextDocument>

#include "model/example_table.h"
#include "model/model_file.h"
#include "model/options.h"
#include "results/results_table.h"
#include "results/solve_commands.h"
#include "results/stochastic_commands.h"
#include "ui/description_dialog.h"
#include "ui/dialogs/examples_browser.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/dialogs/model_commands.h"
#include "ui/dialogs/threads_dialog.h"
#include "ui/menu_table.h"
#include "ui/option_dialogs.h"
#include "ui/plots/plot_commands.h"
#include "ui/qt_prompter.h"
#include "ui/results/table_copy.h"
#include "ui/results_dialogs.h"
#include "ui/results_view.h"
#include "ui/shell/background_run.h"
#include "ui/shell/desktop_conventions.h"
#include "ui/shell/session_settings.h"

namespace ovaro::ui {

namespace {

constexpr const char* kOutOfSpace = "Edit control out of space.";

// The main text area: a plain text editor that holds at most 32000 characters. Typing or pasting
// beyond that is refused with the out-of-space message; text the program itself puts there is
// not checked.
class TextArea final : public QPlainTextEdit {
 public:
  TextArea(std::function<void()> outOfSpace, QWidget* parent)
      : QPlainTextEdit(parent), outOfSpace_(std::move(outOfSpace)) {}

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    const QString typed = event->text();
    const bool inserts = !typed.isEmpty() && typed.front().isPrint();
    if (inserts && !fits(typed.size())) {
      outOfSpace_();
      return;
    }
    QPlainTextEdit::keyPressEvent(event);
  }
  void insertFromMimeData(const QMimeData* source) override {
    if (source->hasText() && !fits(source->text().size())) {
      outOfSpace_();
      return;
    }
    QPlainTextEdit::insertFromMimeData(source);
  }

 private:
  bool fits(qsizetype inserted) const {
    const qsizetype length = document()->characterCount() - 1;
    const qsizetype selected = textCursor().selectedText().size();
    return length - selected + inserted <= static_cast<qsizetype>(kTextAreaLimit);
  }
  std::function<void()> outOfSpace_;
};

// The wait cursor for the length of a command.
class WaitCursor {
 public:
  WaitCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QApplication::restoreOverrideCursor(); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
};

FileRequest modelFileRequest(FileRequest::Kind kind) {
  FileRequest r;
  r.kind = kind;
  r.filters = {{"OVARO Files (*.ovi)", "*.ovi"}, {"All Files (*.*;*)", "*.*;*"}};
  r.promptToCreate = kind == FileRequest::Kind::Open;
  r.promptBeforeOverwrite = kind == FileRequest::Kind::Save;
  return r;
}

constexpr const char* kExampleFailure =
    "Could not read file %s! See User's Guide \t\t\t\r chapter on The Example Library.  "
    "Alternatively, \t\t\t\r the following workaround will sometimes help: \t\t\t\r Select "
    "'File: Open' and navigate to the directory \t\t\t\r which contains the *.ovi example files, "
    "but do not \t\t\t\r open a file.  Then close the Open dialog box by \t\t\t\r clicking on the "
    "x in the upper right hand corner. \t\t\t\r Then try the 'File: Examples ...' command again.";

}  // namespace

MainWindow::MainWindow(Prompter& prompter, const std::string& modelFile, QWidget* parent)
    : QMainWindow(parent), prompter_(prompter), wb_(prompter, progress_) {
  setObjectName("MainWClass");
  setWindowTitle(QString::fromStdString(std::string(kProgramName)));
  setGeometry(10, 70, 700, 450);
  if (auto* qp = dynamic_cast<QtPrompter*>(&prompter_)) qp->setOwner(this);

  splitter_ = new QSplitter(Qt::Vertical, this);
  textArea_ =
      new TextArea([this] { prompter_.inform(kOutOfSpace, "Ovaro", Icon::Stop); }, splitter_);
  textArea_->setObjectName("TextArea");
  textArea_->setLineWrapMode(QPlainTextEdit::NoWrap);
  textArea_->setFrameShape(QFrame::StyledPanel);
  connect(textArea_, &QPlainTextEdit::textChanged, this, [this] {
    if (!settingText_) shell_.modified = 1;
    setWindowModified(shell_.modified != 0);
  });
  resultsView_ = new ResultsView(splitter_);
  new ResultsCopy(resultsView_);
  resultsView_->hide();
  splitter_->addWidget(textArea_);
  splitter_->addWidget(resultsView_);
  setCentralWidget(splitter_);
  setFocusProxy(textArea_);

  progressBar_ = new QProgressBar(this);
  progressBar_->setObjectName("MonteCarloProgress");
  progressBar_->hide();
  statusBar()->addPermanentWidget(progressBar_, 1);
  cancelButton_ = new QPushButton(tr("Cancel"), this);
  cancelButton_->setObjectName("MonteCarloCancel");
  cancelButton_->hide();
  statusBar()->addPermanentWidget(cancelButton_);
  statusBar()->setSizeGripEnabled(true);
  progress_.setBar(progressBar_);

  modelCommands_ = std::make_unique<ModelCommands>(
      wb_, this, [this](QDialog& dialog) { return runDialog(dialog); },
      [this](MatrixEditor& editor) {
        // Driven from outside, the editor is handed over like any dialog; otherwise it runs
        // with its "Finished Editing" box.
        if (dialogRunner_) {
          dialogRunner_(editor);
        } else {
          runMatrixEditorInteractively(editor);
        }
      });
  buildMenus();
  registerCommands();

  // A model named on the command line is read while the window is made; its title shows even
  // when it cannot be read, so the user sees which file was meant.
  shell_.fileName = modelFile;
  if (!modelFile.empty()) {
    shell_.fileTitle = fileTitle(modelFile);
    if (readModelFile(modelFile, wb_.model, prompter_) == 0) {
      showFileMessage("File %s cannot be read!", shell_.fileTitle);
    }
  }
  setCaption();

  // Before the session ends, unsaved edits of the text area are offered for saving, as on close.
  connect(qApp, &QGuiApplication::commitDataRequest, this, [this](QSessionManager& manager) {
    if (shell_.modified != 0 && askSave() == Answer::Cancel) manager.cancel();
  });
}

MainWindow::~MainWindow() = default;

void MainWindow::buildMenus() {
  std::function<void(QMenu*, const std::vector<MenuNode>&)> fill =
      [&](QMenu* menu, const std::vector<MenuNode>& nodes) {
        for (const MenuNode& node : nodes) {
          const QString label = QString::fromStdString(node.label);
          switch (node.kind) {
            case MenuKind::Separator:
              menu->addSeparator();
              break;
            case MenuKind::Menu:
              fill(menu->addMenu(label), node.children);
              break;
            case MenuKind::Command:
            case MenuKind::Heading: {
              QAction*& action = actions_[node.id];
              if (action == nullptr) {
                action = new QAction(label, this);
                action->setData(node.id);
                action->setCheckable(node.checkable);
                action->setChecked(node.checked);
                const int id = node.id;
                connect(action, &QAction::triggered, this, [this, id] { dispatch(id); });
              }
              menu->addAction(action);
              break;
            }
          }
        }
      };
  for (const MenuNode& top : mainMenu()) {
    QMenu* menu = menuBar()->addMenu(QString::fromStdString(top.label));
    fill(menu, top.children);
    if (editMenu_ == nullptr && top.label == "&Edit") editMenu_ = menu;
  }
  connect(editMenu_, &QMenu::aboutToShow, this, &MainWindow::onEditMenuAboutToShow);
  addStandardShortcuts(actions_);
  recentMenu_ = addRecentFilesMenu(*action(cmd::kExit));

  for (const Accelerator& acc : acceleratorTable()) {
    auto* shortcut =
        new QShortcut(QKeySequence(QString::fromUtf8(acc.key.data(), acc.key.size())), this);
    const int id = acc.id;
    connect(shortcut, &QShortcut::activated, this, [this, id] { dispatch(id); });
  }
  // The example browser has no menu item of its own: Ctrl+E opens it.
  auto* browse = new QShortcut(QKeySequence(QStringLiteral("Ctrl+E")), this);
  connect(browse, &QShortcut::activated, this, [this] { dispatch(cmd::kExamplesBrowser); });
}

void MainWindow::onEditMenuAboutToShow() {
  // Undo and Paste follow the text area and the clipboard; Cut, Copy and Delete stay enabled
  // whatever the selection, as they always have.
  action(cmd::kUndo)->setEnabled(textArea_->document()->isUndoAvailable());
  const QClipboard* clipboard = QGuiApplication::clipboard();
  action(cmd::kPaste)->setEnabled(clipboard != nullptr && !clipboard->text().isEmpty());
}

void MainWindow::dispatch(int id) {
  // While runs go on in the background, the model and the results are theirs.
  if (BackgroundRun::busy(this)) return;
  auto it = commands_.find(id);
  if (it == commands_.end()) return;
  it->second();
  setWindowModified(shell_.modified != 0);
  update();
}

bool MainWindow::handles(int id) const {
  return commands_.count(id) != 0;
}

QAction* MainWindow::action(int id) const {
  auto it = actions_.find(id);
  return it == actions_.end() ? nullptr : it->second;
}

int MainWindow::runDialog(QDialog& dialog) {
  if (dialogRunner_) return dialogRunner_(dialog);
  return dialog.exec();
}

void MainWindow::setCaption() {
  setWindowTitle(QString::fromStdString(captionText(shell_.fileTitle)) + "[*]");
}

void MainWindow::showFileMessage(const std::string& format, const std::string& title) {
  prompter_.inform(fileMessageText(format, title), "Ovaro", Icon::Exclamation);
}

void MainWindow::setTextAreaText(const QString& text) {
  settingText_ = true;
  textArea_->setPlainText(text);
  settingText_ = false;
}

void MainWindow::syncToggleChecks() {
  action(cmd::kPrefWarnings)->setChecked(wb_.shell.warningMessages == 1);
  action(cmd::kPrefDebugImported)->setChecked(wb_.shell.debugImportedMatrices == 1);
  action(cmd::kPrefScenarioQuestion)->setChecked(wb_.shell.askScenarioQuestion == 1);
}

void MainWindow::registerCommands() {
  auto on = [this](int id, std::function<void()> handler) { commands_[id] = std::move(handler); };
  auto nothing = [this](int id) { commands_[id] = [] {}; };

  // File
  on(cmd::kNew, [this] { newModel(); });
  on(cmd::kOpen, [this] { openModel(); });
  registerInterchangeCommands();
  on(cmd::kSave, [this] { save(); });
  on(cmd::kSaveAs, [this] { saveAs(); });
  on(cmd::kPrint, [this] { printFile(); });
  on(cmd::kClear, [this] { clearModel(); });
  on(cmd::kExit, [this] { exitProgram(); });
  for (const ExampleEntry& e : exampleTable()) {
    const int id = e.commandId;
    on(id, [this, id] { loadExample(id); });
  }
  on(cmd::kExamplesBrowser, [this] { openExamplesBrowser(); });
  // Edit: the text area's own operations.
  on(cmd::kUndo, [this] { textArea_->undo(); });
  on(cmd::kCut, [this] { textArea_->cut(); });
  on(cmd::kCopy, [this] { textArea_->copy(); });
  on(cmd::kPaste, [this] { textArea_->paste(); });
  on(cmd::kDelete, [this] { textArea_->textCursor().removeSelectedText(); });
  on(cmd::kSelectAll, [this] { textArea_->selectAll(); });
  // Specification and Data: the data-entry dialogs and windows.
  on(cmd::kSpecDescription, [this] { openDescription(); });
  ModelCommands& mc = *modelCommands_;
  on(cmd::kSpecName, [&mc] { mc.name(); });
  // A model reshaped by these dialogs is another model: the results of the old shape go.
  auto reshaping = [this](auto run) {
    return [this, run] {
      const Dimensions dims = wb_.model.dims;
      const SpecFlags flags = wb_.model.flags;
      run();
      if (!(dims == wb_.model.dims) || !(flags == wb_.model.flags)) forgetResults();
    };
  };
  on(cmd::kSpecStochastic, reshaping([&mc] { mc.stochasticTerms(); }));
  on(cmd::kSpecForms, reshaping([&mc] { mc.forms(); }));
  on(cmd::kSpecRandomSource, [&mc] { mc.sourceRandom(); });
  on(cmd::kSpecMonteCarlo, [&mc] { mc.optionsMonteCarlo(); });
  on(cmd::kDataSize, reshaping([&mc] { mc.size(); }));
  on(cmd::kDataAcronyms, [&mc] { mc.acronyms(); });
  on(cmd::kDataCriterion, [this, &mc] { mc.matrixEntry(criterionGroup(wb_.model)); });
  on(cmd::kDataHcfr, [&mc] { mc.matrixEntry("DataInGg"); });
  on(cmd::kDataSystem, [this] { dataSystemEquations(); });
  for (int id :
       {cmd::kDataAdditive, cmd::kDataUncertain, cmd::kDataMeasurement, cmd::kDataPolicy}) {
    on(id, [this, id] { dataStochastic(id); });
  }
  // Solve
  on(cmd::kSolveQlp, [this] { solveSingle(kSolveQlp, false, false); });
  on(cmd::kSolveQlpPrint, [this] { solveSingle(kSolveQlp, true, false); });
  on(cmd::kSolveOlf, [this] { solveSingle(kSolveOlf, false, false); });
  on(cmd::kSolveOlfPrint, [this] { solveSingle(kSolveOlf, true, true); });
  on(cmd::kCompare, [this] { compare(false); });
  on(cmd::kComparePrint, [this] { compare(true); });
  nothing(cmd::kUpdatingHeading);
  nothing(cmd::kUpdPrintHeading);
  on(cmd::kUpdDeterministic, [this] { solveSingle(kSolveQlp, false, false); });
  on(cmd::kUpdPrintDeterministic, [this] { solveSingle(kSolveQlp, true, false); });
  on(cmd::kUpdStochWo, [this] { updating(false); });
  on(cmd::kUpdPrintStochWo, [this] { updating(true); });
  for (int id :
       {cmd::kUpdStochWith, cmd::kUpdMeasError, cmd::kUpdPrintStochWith, cmd::kUpdPrintMeasError}) {
    on(id, [this] { prompter_.inform(kNotSupportedYet, "Ovaro"); });
  }
  // Results
  auto plotHost = [this] {
    return PlotHost(
        wb_, [this](QDialog& d) { return runDialog(d); }, this);
  };
  on(cmd::kPlotSingle, [plotHost] { runSingleRunPlots(plotHost()); });
  on(cmd::kPlotScenarios, [plotHost] { runScenarioPlots(plotHost()); });
  on(cmd::kPlotSpread, [plotHost] { runSpreadPlot(plotHost()); });
  on(cmd::kCriterionSummary, [plotHost] { showCriterionSummary(plotHost()); });
  wb_.nameScenario = [plotHost](const std::string& method) {
    return askScenarioName(plotHost(), method);
  };
  on(cmd::kDisplay, [this] { displayOptions(); });
  on(cmd::kResultsPrint, [this] {
    prompter_.inform(
        "This option not supported yet.\t\t\t\t\t\t\t\r Use 'Solve: Compare Print' instead",
        "Ovaro");
  });
  // Transformations: headings do nothing; the operations reshape the model.
  nothing(cmd::kTransFormHeading);
  nothing(cmd::kTransStochHeading);
  nothing(cmd::kTransSizeHeading);
  for (int id : {86,  88,  90,  92,  94,  96,  98,  81,  100, 102, 103, 104,
                 106, 108, 112, 114, 115, 116, 121, 118, 119, 120, 122, 123}) {
    on(id, reshaping([&mc, id] { mc.transformation(id); }));
  }
  // Preferences, Character, Help
  on(cmd::kPrefResults, [this] { resultsPreferences(); });
  on(cmd::kPrefImportColumns, [this] {
    ImportColumnsDialog dialog(wb_.shell.importMatrixColumns, this);
    runDialog(dialog);
  });
  for (int id : {cmd::kPrefScenarioQuestion, cmd::kPrefDebugImported, cmd::kPrefWarnings}) {
    on(id, [this, id] { toggle(id); });
  }
  on(cmd::kPrefCaution, [this] {
    CautionDialog dialog(wb_.caution, this);
    runDialog(dialog);
  });
  on(cmd::kPrefSeed, [this] {
    SeedDialog dialog(wb_.random, this);
    runDialog(dialog);
  });
  on(cmd::kPrefThreads, [this] {
    ThreadsDialog dialog(wb_.threads, this);
    runDialog(dialog);
  });
  // The font chooser is a placeholder that always reports cancellation.
  nothing(cmd::kFont);
  on(cmd::kHelp,
     [this] { prompter_.inform("Help not yet implemented!", "Ovaro", Icon::Exclamation); });
  on(cmd::kAbout, [this] {
    AboutDialog dialog(this);
    runDialog(dialog);
  });
}

// ---- File ----

Answer MainWindow::askSave() {
  Answer answer = prompter_.ask(fileMessageText("Save current changes in %s?", shell_.fileTitle),
                                "Ovaro", Buttons::YesNoCancel, Answer::Yes, Icon::Question);
  if (answer == Answer::Yes && save() == 0) answer = Answer::Cancel;
  return answer;
}

int MainWindow::save() {
  if (shell_.fileName.empty()) return saveAs();
  if (writeModelFile(shell_.fileName, wb_.model, prompter_) == 0) {
    showFileMessage("Could not write file %s", shell_.fileTitle);
    return 0;
  }
  shell_.modified = 0;
  rememberFile();
  return 1;
}

int MainWindow::saveAs() {
  std::optional<std::string> name =
      prompter_.askFileName(modelFileRequest(FileRequest::Kind::Save));
  if (!name) return 0;
  shell_.fileName = *name;
  shell_.fileTitle = fileTitle(*name);
  setCaption();
  if (writeModelFile(shell_.fileName, wb_.model, prompter_) == 0) {
    showFileMessage("Could not write file %s", shell_.fileTitle);
    return 0;
  }
  shell_.modified = 0;
  rememberFile();
  return 1;
}

void MainWindow::newModel() {
  if (shell_.modified != 0 && askSave() == Answer::Cancel) return;
  setTextAreaText({});
  shell_.fileName.clear();
  shell_.fileTitle.clear();
  setCaption();
  shell_.modified = 0;
  forgetResults();
  modelCommands_->newModelSequence();
}

void MainWindow::openModel() {
  if (shell_.modified != 0 && askSave() == Answer::Cancel) return;
  std::optional<std::string> name =
      prompter_.askFileName(modelFileRequest(FileRequest::Kind::Open));
  if (!name) {
    setCaption();
    shell_.modified = 0;
    return;
  }
  openPath(*name);
}

void MainWindow::openPath(const std::string& path) {
  if (readModelFile(path, wb_.model, prompter_) != 0) {
    shell_.fileName = path;
    shell_.fileTitle = fileTitle(path);
    setCaption();
    shell_.modified = 0;
    forgetResults();
    rememberFile();
    statusBar()->showMessage(QString::fromStdString("Opened " + shell_.fileTitle));
    return;
  }
  // A file that could not be read left the model as it was, so the model keeps its own file and
  // title: a later Save writes where the model came from, never over the file refused here.
  showFileMessage("Could not read file %s!", fileTitle(path));
  shell_.modified = 0;
}

void MainWindow::rememberFile() {
  // Kept as a full path: the next session may start in another directory.
  const QString path = QFileInfo(QString::fromStdString(shell_.fileName)).absoluteFilePath();
  if (settings_ != nullptr) {
    recent_ = rememberRecentFile(*settings_, path);
  } else {
    recent_.removeAll(path);
    recent_.prepend(path);
    while (recent_.size() > kRecentFileCount) recent_.removeLast();
  }
  rebuildRecentMenu();
}

void MainWindow::rebuildRecentMenu() {
  if (recentMenu_ == nullptr) return;
  fillRecentFilesMenu(*recentMenu_, recent_, [this](const QString& path) {
    if (shell_.modified != 0 && askSave() == Answer::Cancel) return;
    openPath(path.toStdString());
    setWindowModified(shell_.modified != 0);
  });
}

void MainWindow::useSettings(QSettings* settings) {
  settings_ = settings;
  if (settings_ == nullptr) return;
  restoreSession(*settings_, *this, *splitter_, wb_, dynamic_cast<QtPrompter*>(&prompter_));
  recent_ = ui::recentFiles(*settings_);
  rebuildRecentMenu();
}

void MainWindow::printFile() {
  // Printing is a placeholder that always fails.
  showFileMessage("Could not print file %s", shell_.fileTitle);
}

void MainWindow::clearModel() {
  // The text area, the file and the modified flag stay, so a later Save writes to the file last
  // opened; only the title forgets it.
  setWindowTitle(QString::fromStdString(captionText({})) + "[*]");
  wb_.resetToDefaults();
  syncToggleChecks();
  forgetResults();
}

void MainWindow::exitProgram() {
  // The model is released only once the window really closes: a close cancelled at the save
  // prompt keeps everything as it was.
  close();
}

void MainWindow::loadExample(int id) {
  const ExampleEntry* entry = exampleLibrary().row(id);
  if (entry == nullptr) return;
  const std::string path = exampleLibrary().filePath(*entry);
  if (readModelFile(path, wb_.model, prompter_) != 0) {
    // The title names the example, but the current file is not changed: a later Save writes to
    // the file last opened, or asks for a name.
    setWindowTitle(QString::fromStdString(captionText(entry->fileName)) + "[*]");
    forgetResults();
    prompter_.inform(std::string(entry->description), "Model Loaded");
    if (examplesBrowser_) examplesBrowser_->close();
    openDescription();
  } else {
    showFileMessage(kExampleFailure, std::string(entry->fileName));
    if (examplesBrowser_) examplesBrowser_->close();
  }
}

void MainWindow::openExamplesBrowser() {
  ExamplesBrowser browser(
      exampleLibrary(), [this](int id) { loadExample(id); }, this);
  examplesBrowser_ = &browser;
  runDialog(browser);
  update();
}

void MainWindow::openDescription() {
  DescriptionDialog dialog(wb_.model.description, prompter_, this);
  runDialog(dialog);
}

// ---- Data ----

void MainWindow::dataSystemEquations() {
  const Model& m = wb_.model;
  if (m.flags.forwardVars == opt::kForwardYes &&
      (m.dims.maxLead.value < 1 || m.dims.maxLead.value > 3)) {
    prompter_.inform("Maximum Lead must be 1, 2 or 3.", "Error");
    return;
  }
  modelCommands_->matrixEntry(systemEquationsGroup(m));
}

void MainWindow::dataStochastic(int id) {
  const int terms = wb_.model.flags.stochTerms;
  constexpr int kDeterministic = opt::kDeterministic, kAdditive = opt::kAdditiveNoise,
                kUncertain = opt::kParameterUncertainty;
  if (id == cmd::kDataAdditive && terms == kDeterministic) {
    prompter_.inform(
        "Stochastic terms specification is 'deterministic'\t\t\t\t\t\t\t\t\r so the additive "
        "noise terms are not defined.",
        "Additive Noise Terms Not Defined!");
    return;
  }
  if (id == cmd::kDataUncertain && (terms == kDeterministic || terms == kAdditive)) {
    prompter_.inform(
        "Stochastic terms specification is 'deterministic'\t\t\t\t\t\t\t\t\r or 'stochastic "
        "with additive noise'\t\t\t\t\t\t\t\t\r so the uncertain parameter terms are not defined.",
        "Uncertain Parameter Terms Not Defined!");
    return;
  }
  if (id == cmd::kDataMeasurement &&
      (terms == kDeterministic || terms == kAdditive || terms == kUncertain)) {
    prompter_.inform(
        "Stochastic terms specification is 'deterministic'\t\t\t\t\t\t\t\t\r or 'stochastic "
        "with additive noise'\t\t\t\t\t\t\t\t\r or 'stochastic with parameter "
        "uncertainty'\t\t\t\t\t\t\t\t\r so the measurement error terms are not defined.",
        "Measurement Error Terms Not Defined!");
    return;
  }
  if (id == cmd::kDataPolicy && wb_.model.flags.policyToParam == opt::kPolicyNo) {
    prompter_.inform(
        "The 'Policy to Parameter' option is set to 'No'\t\t\t\t\t\t\t\t\r therefore the N matrix "
        "is not allocated.",
        "N Matrix Not Allocated !");
    return;
  }
  modelCommands_->matrixEntry(id == cmd::kDataAdditive      ? "DataInStochAdd"
                              : id == cmd::kDataUncertain   ? "DataInStoch"
                              : id == cmd::kDataMeasurement ? "DataInStochVE"
                                                            : "DataInN");
}

// ---- Solve ----

bool MainWindow::debugFilePrompt() {
  return promptAndOpenDebugFile(prompter_, wb_.debugFile, wb_.debugFileName);
}

void MainWindow::solveSingle(int method, bool traced, bool sheet) {
  wb_.shell.methodSelector = method;
  if (traced) {
    if (!debugFilePrompt()) return;
    if (sheet) {
      DebugPrintSheet dialog(wb_.debug, this);
      runDialog(dialog);
    } else {
      DebugPrintOptionsDialog dialog(wb_.debug.switches, this);
      runDialog(dialog);
    }
  }
  bool solved = false;
  {
    WaitCursor wait;
    solved = runSolveCommand(wb_, method, sheet ? DebugPage::Summary : DebugPage::QlpOlf);
  }
  if (!solved) return;
  showResults();
  statusBar()->showMessage(solvedStatus(wb_, method));
}

void MainWindow::compare(bool traced) {
  MethodDialog methods(wb_.results.ran.compare, this);
  runDialog(methods);
  if (traced) {
    if (!debugFilePrompt()) return;
    DebugPrintSheet dialog(wb_.debug, this);
    runDialog(dialog);
  }
  // The runs go to a worker thread with their own copies of the model and the generator state;
  // the results come back here, and only a finished comparison is kept.
  const MethodSelection chosen = wb_.results.ran.compare;
  CompareSettings settings = compareSettings(wb_, chosen);
  std::atomic<bool> cancel{false};
  settings.cancel = &cancel;
  const Model model = wb_.model;
  RandomState random = wb_.random;
  CompareResult result;
  BackgroundRun(this, prompter_, progress_, cancelButton_)
      .run([&](Prompter& p, Progress& pr) { result = maincompare(model, settings, random, p, pr); },
           cancel);
  const bool ran = !result.cancelled && result.status == 1 && result.runs > 0;
  if (result.cancelled) {
    statusBar()->showMessage(tr("Compare cancelled: nothing kept"));
  } else {
    wb_.random = random;
    // Kept before the debug file closes: storing the scenario writes its dumps there.
    keepCompareResult(wb_, chosen, result);
    showResults();
    statusBar()->showMessage(compareStatus(wb_));
  }
  wb_.debugFile.close();
  finishBackgroundRun();
  // The summary of the runs' criteria stands beside the results of a comparison that ran.
  if (ran)
    showCriterionSummary(PlotHost(
        wb_, [this](QDialog& d) { return runDialog(d); }, this));
}

void MainWindow::updating(bool traced) {
  if (traced) {
    if (!debugFilePrompt()) return;
    DebugPrintSheet dialog(wb_.debug, this);
    runDialog(dialog);
  }
  MethodWoDialog methods(wb_.updatingMethods, this);
  runDialog(methods);
  UpdatingSettings settings = updatingSettings(wb_);
  std::atomic<bool> cancel{false};
  settings.cancel = &cancel;
  const Model model = wb_.model;
  RandomState random = wb_.random;
  UpdatingResult result;
  BackgroundRun(this, prompter_, progress_, cancelButton_)
      .run([&](Prompter& p,
               Progress& pr) { result = maincompareWoUpdating(model, settings, random, p, pr); },
           cancel);
  wb_.debugFile.close();
  if (result.cancelled) {
    statusBar()->showMessage(tr("Stochastic w/o Updating cancelled: nothing kept"));
  } else {
    wb_.random = random;
    keepUpdatingResult(wb_, result);
  }
  finishBackgroundRun();
  showResults();
}

// ---- Results and preferences ----

void MainWindow::showResults() {
  std::optional<ResultsTable> table = layoutResultsTable(wb_.model, wb_.results, wb_.resultsFormat);
  if (!table) return;
  resultsView_->showTable(*table);
  if (resultsView_->isHidden()) {
    resultsView_->show();
    splitResultsArea();
  }
}

void MainWindow::forgetResults() {
  wb_.results.clear();
  resultsView_->clearTable();
  resultsView_->hide();
}

void MainWindow::splitResultsArea() {
  // The table takes most of the window; the text area stays above it, a drag away. A window
  // not yet on screen has no height to share: it is split when it is shown.
  const int height = splitter_->height();
  if (!isVisible() || height <= 0) return;
  splitter_->setSizes({height / 5, height - height / 5});
}

void MainWindow::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (!resultsView_->isHidden()) splitResultsArea();
}

void MainWindow::displayOptions() {
  DisplayOptionsDialog dialog(wb_.results.display, this);
  runDialog(dialog);
  if (!layoutResultsTable(wb_.model, wb_.results, wb_.resultsFormat)) {
    prompter_.inform(
        "There are no results to display for this choice. Solve the model by its "
        "method first.",
        "Ovaro", Icon::Information);
    return;
  }
  showResults();
}

void MainWindow::resultsPreferences() {
  ResultsPreferencesDialog dialog(wb_.results.display, wb_.resultsFormat, this);
  runDialog(dialog);
}

void MainWindow::toggle(int id) {
  int* flag = id == cmd::kPrefWarnings        ? &wb_.shell.warningMessages
              : id == cmd::kPrefDebugImported ? &wb_.shell.debugImportedMatrices
                                              : &wb_.shell.askScenarioQuestion;
  *flag = *flag != 1 ? 1 : 0;
  action(id)->setChecked(*flag == 1);
}

// ---- Find and replace ----

int MainWindow::findReplace(FindReplaceAction what, const QString& findText,
                            const QString& replaceText) {
  if (what == FindReplaceAction::Closing) return 0;
  auto notFound = [this] { prompter_.inform("Text not found!", "Ovaro"); };
  if (findText.isEmpty()) {
    notFound();
    return 0;
  }
  if (what == FindReplaceAction::FindNext) {
    if (textArea_->find(findText)) return 1;
    notFound();
    return 0;
  }
  if (what == FindReplaceAction::Replace) {
    QTextCursor cursor = textArea_->textCursor();
    if (cursor.selectedText() == findText) {
      cursor.insertText(replaceText);
      textArea_->setTextCursor(cursor);
      textArea_->find(findText);
      return 1;
    }
    if (textArea_->find(findText)) return 0;  // selected the next one; replaced on the next call
    notFound();
    return 0;
  }
  // Replace All: every occurrence from the start. Each pass moves past the text it inserted, so
  // the loop ends; the bound guards it all the same.
  QTextCursor cursor(textArea_->document());
  cursor.beginEditBlock();
  int replaced = 0;
  QTextCursor at = textArea_->document()->find(findText, cursor);
  while (!at.isNull() && replaced < static_cast<int>(kTextAreaLimit)) {
    at.insertText(replaceText);
    ++replaced;
    at = textArea_->document()->find(findText, at);
  }
  cursor.endEditBlock();
  if (replaced == 0) notFound();
  return replaced;
}

// ---- Close ----

// A window closed while runs went on closes once they have stopped.
void MainWindow::finishBackgroundRun() {
  if (!closeAfterRun_) return;
  closeAfterRun_ = false;
  QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  if (BackgroundRun::busy(this)) {
    cancelButton_->click();
    closeAfterRun_ = true;
    event->ignore();
    return;
  }
  if (shell_.modified != 0 && askSave() == Answer::Cancel) {
    event->ignore();
    return;
  }
  if (settings_ != nullptr)
    saveSession(*settings_, *this, *splitter_, wb_, dynamic_cast<QtPrompter*>(&prompter_));
  freeModelArrays(wb_.model);
  event->accept();
}

}  // namespace ovaro::ui
