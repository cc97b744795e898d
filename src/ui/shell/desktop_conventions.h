// What a desktop user expects of the workbench beside its own commands and accelerators: the
// standard shortcuts of the file commands, a list of the model files used last, and a status bar
// line that says what the last command did.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <map>

class QAction;
class QMenu;

namespace ovaro {
class Workbench;
}

namespace ovaro::ui {

// Ctrl+N New, Ctrl+O Open, Ctrl+S Save, Ctrl+Shift+S Save As, Ctrl+Q Exit and F5 Solve: QLP, on
// the menu actions of those commands (by command id).
void addStandardShortcuts(const std::map<int, QAction*>& actions);

// A "Recent Files" submenu put above `exitAction` in the menu that holds it; empty (greyed) until
// a file is opened or saved.
QMenu* addRecentFilesMenu(QAction& exitAction);
// Refills the submenu with `files`, the latest first; choosing one calls `open` with its path.
void fillRecentFilesMenu(QMenu& menu, const QStringList& files,
                         const std::function<void(const QString&)>& open);

// "QLP solved: criterion 3.02" (or "OLF w/o update solved: ..."), after a solve of `method`.
QString solvedStatus(const Workbench& wb, int method);
// "Compare: 20 runs, 5 methods", after a comparison.
QString compareStatus(const Workbench& wb);

}  // namespace ovaro::ui
