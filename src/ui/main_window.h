// The workbench's main window: the text area that fills it, the menu bar that carries every
// command, the results windows, and the command table that maps each command id to what it does.
//
// The window owns one Workbench (the model, its preferences and results) and the shell state
// (current file, title, modified flag). Every menu item, accelerator and test reaches a command
// through dispatch(id); the handler calls one operation of the layers below and then the display
// is brought up to date. Messages and file names go through the Prompter given at construction,
// so a test scripts them; modal dialogs go through the dialog runner, which a test replaces to
// fill a dialog in and close it.
#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "results/workbench.h"
#include "ui/qt_progress.h"
#include "ui/shell_state.h"

class QAction;
class QDialog;
class QMenu;
class QPlainTextEdit;
class QProgressBar;
class QSettings;
class QSplitter;

namespace ovaro::ui {

class ModelCommands;
class ResultsView;

// What a find/replace request asks for.
enum class FindReplaceAction { FindNext, Replace, ReplaceAll, Closing };

class MainWindow : public QMainWindow {
 public:
  // Creates the window with its text area and menus, reading `modelFile` (when not empty) into
  // the model. The prompter must outlive the window.
  explicit MainWindow(Prompter& prompter, const std::string& modelFile = {},
                      QWidget* parent = nullptr);
  ~MainWindow() override;

  // Runs the command with this id. Unknown ids do nothing.
  void dispatch(int id);
  // Whether the command table holds a handler for this id.
  bool handles(int id) const;
  // The menu action that sends this id; nullptr when no menu item sends it.
  QAction* action(int id) const;

  // Modal dialogs are shown through this; it returns the dialog's result code. The default runs
  // the dialog's own event loop. Tests replace it to fill a dialog in and close it.
  using DialogRunner = std::function<int(QDialog&)>;
  void setDialogRunner(DialogRunner runner) { dialogRunner_ = std::move(runner); }

  // The save prompt: "Save current changes in %s?" with Yes, No and Cancel. Yes saves; a save
  // that does not happen (Save As cancelled, write failed) turns the answer into Cancel.
  Answer askSave();
  // Save (25) and Save As (26); 1 when the model was written.
  int save();
  int saveAs();

  // The text-area search behind the find/replace dialog. Finds search forward from the cursor;
  // Replace replaces the selection when it holds the find text, then finds the next occurrence;
  // Replace All replaces every occurrence from the start (bounded: never more replacements than
  // the text area can hold characters). "Text not found!" when nothing matches. Returns the
  // number of replacements made (finds: 1 when found).
  int findReplace(FindReplaceAction action, const QString& findText, const QString& replaceText);

  // Opens (or re-opens) the results windows for the current display selector.
  void showResults();
  // Takes the results of the previous model away: a changed model has none yet.
  void forgetResults();

  // Remembers the window, the results preferences, the dialogs' directories and the recent
  // files in `settings` (not owned; it must outlive the window), restoring what it holds now.
  // Without it nothing is kept between sessions.
  void useSettings(QSettings* settings);
  // The model files opened or saved last, the latest first (File menu, "Recent Files").
  const QStringList& recentFiles() const { return recent_; }

  Workbench& workbench() { return wb_; }
  const ShellState& shellState() const { return shell_; }
  QPlainTextEdit* textArea() const { return textArea_; }
  ResultsView* resultsView() const { return resultsView_; }
  QProgressBar* progressBar() const { return progressBar_; }
  // Stops a comparison or an updating run after the run in hand; shown only while one runs.
  QPushButton* cancelButton() const { return cancelButton_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void buildMenus();
  void registerCommands();
  void setCaption();
  void showFileMessage(const std::string& format, const std::string& title);
  int runDialog(QDialog& dialog);
  void setTextAreaText(const QString& text);
  void syncToggleChecks();
  void onEditMenuAboutToShow();

  // File
  void newModel();
  void openModel();
  void openPath(const std::string& path);
  void rememberFile();
  void rebuildRecentMenu();
  void printFile();
  void clearModel();
  void exitProgram();
  void loadExample(int id);
  void openExamplesBrowser();
  void openDescription();
  // Data: the checks that come before each data-entry dialog.
  void dataSystemEquations();
  void dataStochastic(int id);
  // File: the imports and exports (shell/interchange_commands.cpp)
  void registerInterchangeCommands();
  void importInputFile(int id);
  void exportInputFile(int id);
  void importMatrices(int id);
  void importOneMatrix(MatrixId id);
  // Solve
  bool debugFilePrompt();
  void solveSingle(int method, bool traced, bool sheet);
  void compare(bool traced);
  void updating(bool traced);
  void finishBackgroundRun();
  // Results and preferences
  void splitResultsArea();
  void displayOptions();
  void resultsPreferences();
  void toggle(int id);

  Prompter& prompter_;
  QtProgress progress_;
  Workbench wb_;
  ShellState shell_;
  std::map<int, std::function<void()>> commands_;
  QPointer<QDialog> examplesBrowser_;  // the example browser, while it runs
  std::map<int, QAction*> actions_;
  DialogRunner dialogRunner_;
  std::unique_ptr<ModelCommands> modelCommands_;
  bool settingText_ = false;

  QSplitter* splitter_ = nullptr;
  QPlainTextEdit* textArea_ = nullptr;
  ResultsView* resultsView_ = nullptr;
  QProgressBar* progressBar_ = nullptr;
  QPushButton* cancelButton_ = nullptr;
  bool closeAfterRun_ = false;  // the window was closed while runs went on
  QMenu* editMenu_ = nullptr;
  QMenu* recentMenu_ = nullptr;
  QStringList recent_;
  QSettings* settings_ = nullptr;
};

}  // namespace ovaro::ui
