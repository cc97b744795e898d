#include "ui/shell/desktop_conventions.h"

#include <QAction>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <algorithm>

#include "results/workbench.h"
#include "ui/menu_table.h"

namespace ovaro::ui {

void addStandardShortcuts(const std::map<int, QAction*>& actions) {
  const std::pair<int, const char*> keys[] = {
      {cmd::kNew, "Ctrl+N"},          {cmd::kOpen, "Ctrl+O"}, {cmd::kSave, "Ctrl+S"},
      {cmd::kSaveAs, "Ctrl+Shift+S"}, {cmd::kExit, "Ctrl+Q"}, {cmd::kSolveQlp, "F5"},
  };
  for (const auto& [id, key] : keys) {
    auto it = actions.find(id);
    if (it != actions.end()) it->second->setShortcut(QKeySequence(QString::fromLatin1(key)));
  }
}

QMenu* addRecentFilesMenu(QAction& exitAction) {
  for (QObject* owner : exitAction.associatedObjects()) {
    auto* fileMenu = qobject_cast<QMenu*>(owner);
    if (fileMenu == nullptr) continue;
    auto* recent = new QMenu(QObject::tr("Recent Files"), fileMenu);
    recent->setObjectName("RecentFiles");
    fileMenu->insertMenu(&exitAction, recent);
    fileMenu->insertSeparator(&exitAction);
    recent->setEnabled(false);
    return recent;
  }
  return nullptr;
}

void fillRecentFilesMenu(QMenu& menu, const QStringList& files,
                         const std::function<void(const QString&)>& open) {
  // The entry being chosen may be the one that refills the menu: its action goes once the
  // choice is over, not while it runs.
  for (QAction* old : menu.actions()) {
    menu.removeAction(old);
    old->deleteLater();
  }
  int number = 1;
  for (const QString& path : files) {
    QAction* a =
        menu.addAction(QStringLiteral("&%1 %2").arg(number++).arg(QFileInfo(path).fileName()));
    a->setToolTip(path);
    a->setData(path);
    QObject::connect(a, &QAction::triggered, &menu, [open, path] { open(path); });
  }
  menu.setEnabled(!files.isEmpty());
}

QString solvedStatus(const Workbench& wb, int method) {
  const bool qlp = method == kSolveQlp;
  const StoredResult* r = wb.results.find(qlp ? "QLP" : "OLFwo");
  const QString name = qlp ? QStringLiteral("QLP") : QStringLiteral("OLF w/o update");
  if (r == nullptr) return name + QStringLiteral(" solved");
  return name + QStringLiteral(" solved: criterion ") +
         QString::number(r->solution.criterion, 'g', 6);
}

QString compareStatus(const Workbench& wb) {
  const auto& chosen = wb.results.ran.compare;
  const auto methods = std::count(chosen.begin(), chosen.end(), true);
  const int runs = wb.model.dims.nmc.value;
  return QStringLiteral("Compare: %1 run%2, %3 method%4")
      .arg(runs)
      .arg(runs == 1 ? "" : "s")
      .arg(methods)
      .arg(methods == 1 ? "" : "s");
}

}  // namespace ovaro::ui
