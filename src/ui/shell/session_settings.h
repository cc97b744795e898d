// What the workbench remembers from one session to the next, kept in a QSettings store: where
// the window was and how it was split, the results preferences, the threads for the Monte Carlo
// runs, the directories of the last file dialogs and the model files opened or saved last.
//
// The start-up defaults of a model are not touched by this: a new or cleared model starts as it
// always has. What is remembered is where the user left the workbench.
#pragma once

#include <QString>
#include <QStringList>

class QMainWindow;
class QSettings;
class QSplitter;

namespace ovaro {
class Workbench;
}

namespace ovaro::ui {

class QtPrompter;

inline constexpr int kRecentFileCount = 8;

// The model files opened or saved last, the latest first.
QStringList recentFiles(const QSettings& settings);
// Puts `path` first in the list (once), keeps at most kRecentFileCount and returns the list.
QStringList rememberRecentFile(QSettings& settings, const QString& path);

// Window geometry, splitter, results preferences and the dialogs' directories, written on close
// and read back when the next window is made. Reading a store that holds none of them leaves
// everything as it is.
void saveSession(QSettings& settings, const QMainWindow& window, const QSplitter& splitter,
                 const Workbench& wb, const QtPrompter* prompter);
void restoreSession(const QSettings& settings, QMainWindow& window, QSplitter& splitter,
                    Workbench& wb, QtPrompter* prompter);

}  // namespace ovaro::ui
