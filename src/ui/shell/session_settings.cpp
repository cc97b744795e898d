#include "ui/shell/session_settings.h"

#include <QMainWindow>
#include <QSettings>
#include <QSplitter>

#include "results/display_selection.h"
#include "results/workbench.h"
#include "ui/qt_prompter.h"

namespace ovaro::ui {

namespace {
constexpr const char* kRecent = "recentFiles";
constexpr const char* kGeometry = "window/geometry";
constexpr const char* kState = "window/state";
constexpr const char* kSplitter = "window/splitter";
constexpr const char* kFormat = "results/format";
constexpr const char* kDesired = "results/desiredPaths";
constexpr const char* kParameters = "results/parameters";
constexpr const char* kColumns = "results/periodsAsColumns";
constexpr const char* kOpenDir = "dialogs/openDirectory";
constexpr const char* kSaveDir = "dialogs/saveDirectory";
constexpr const char* kThreads = "monteCarlo/threads";
}  // namespace

QStringList recentFiles(const QSettings& settings) {
  QStringList list = settings.value(kRecent).toStringList();
  list.removeAll(QString());  // a hand-edited or damaged store may hold empty entries
  return list;
}

QStringList rememberRecentFile(QSettings& settings, const QString& path) {
  QStringList list = recentFiles(settings);
  list.removeAll(path);
  list.prepend(path);
  while (list.size() > kRecentFileCount) list.removeLast();
  settings.setValue(kRecent, list);
  return list;
}

void saveSession(QSettings& settings, const QMainWindow& window, const QSplitter& splitter,
                 const Workbench& wb, const QtPrompter* prompter) {
  settings.setValue(kGeometry, window.saveGeometry());
  settings.setValue(kState, window.saveState());
  settings.setValue(kSplitter, splitter.saveState());
  settings.setValue(kFormat, wb.resultsFormat);
  settings.setValue(kDesired, wb.results.display.desiredPaths);
  settings.setValue(kParameters, wb.results.display.parameters);
  settings.setValue(kColumns, wb.results.display.periodsAsColumns);
  settings.setValue(kThreads, wb.threads);
  if (prompter != nullptr) {
    settings.setValue(kOpenDir, prompter->lastDirectory(FileRequest::Kind::Open));
    settings.setValue(kSaveDir, prompter->lastDirectory(FileRequest::Kind::Save));
  }
  settings.sync();
}

void restoreSession(const QSettings& settings, QMainWindow& window, QSplitter& splitter,
                    Workbench& wb, QtPrompter* prompter) {
  if (settings.contains(kGeometry)) window.restoreGeometry(settings.value(kGeometry).toByteArray());
  if (settings.contains(kState)) window.restoreState(settings.value(kState).toByteArray());
  if (settings.contains(kSplitter)) splitter.restoreState(settings.value(kSplitter).toByteArray());
  if (settings.contains(kFormat)) wb.resultsFormat = settings.value(kFormat).toInt();
  DisplayPreferences& d = wb.results.display;
  d.desiredPaths = settings.value(kDesired, d.desiredPaths).toBool();
  d.parameters = settings.value(kParameters, d.parameters).toBool();
  d.periodsAsColumns = settings.value(kColumns, d.periodsAsColumns).toBool();
  d.periodsAsRows = !d.periodsAsColumns;
  // A damaged store's count is ignored: every core.
  const int threads = settings.value(kThreads, wb.threads).toInt();
  wb.threads = threads >= 0 && threads <= 1024 ? threads : 0;
  if (prompter != nullptr) {
    prompter->setLastDirectory(FileRequest::Kind::Open, settings.value(kOpenDir).toString());
    prompter->setLastDirectory(FileRequest::Kind::Save, settings.value(kSaveDir).toString());
  }
}

}  // namespace ovaro::ui
