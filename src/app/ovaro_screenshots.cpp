// Renders the workbench's windows and dialogs to PNG files, off screen, for the README and the
// user's guide: the main window after a QLP solve of the default example, the results windows
// after a comparison, and each dialog of the shell as it opens.
//
//   ovaro-screenshots OUTPUT_DIR [EXAMPLES_DIR]
//
// Run it with QT_QPA_PLATFORM=offscreen (scripts/screenshots.sh does). Every message box the
// commands raise is recorded and answered by its default instead of being shown.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPixmap>
#include <QTabWidget>
#include <cstdio>
#include <functional>
#include <string>

#include "app/plot_screenshots.h"
#include "model/example_table.h"
#include "model_screenshots.h"
#include "numeric/prompter.h"
#include "ui/dialogs/examples_browser.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"
#include "ui/option_dialogs.h"
#include "ui/results_dialogs.h"
#include "ui/results_view.h"

namespace {

using ovaro::ui::MainWindow;

bool save(QWidget& widget, const QString& dir, const QString& name, bool fit = true) {
  if (fit) widget.adjustSize();
  widget.show();
  QApplication::processEvents();
  const QString path = dir + "/" + name + ".png";
  if (!widget.grab().save(path)) {
    std::fprintf(stderr, "ovaro-screenshots: cannot write %s\n", path.toLocal8Bit().constData());
    return false;
  }
  std::printf("%s\n", path.toLocal8Bit().constData());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  const QStringList args = QApplication::arguments();
  if (args.size() < 2) {
    std::fprintf(stderr, "usage: ovaro-screenshots OUTPUT_DIR [EXAMPLES_DIR]\n");
    return 2;
  }
  const QString out = args.at(1);
  const QString examples = args.size() > 2 ? args.at(2) : QStringLiteral("examples");
  if (!QDir().mkpath(out)) {
    std::fprintf(stderr, "ovaro-screenshots: cannot create %s\n", out.toLocal8Bit().constData());
    return 1;
  }
  bool ok = true;
  ovaro::RecordingPrompter prompter;

  // The main window: the default example solved by QLP, desired paths shown in format 00.00.
  {
    MainWindow window(prompter, (examples + "/track1.ovi").toStdString());
    window.resize(760, 520);
    window.workbench().resultsFormat = 778;
    window.workbench().results.display.desiredPaths = true;
    window.dispatch(ovaro::ui::cmd::kSolveQlp);
    ok &= save(window, out, "main_window", false);
  }
  // A comparison of HCFR, CE and OLF on the learning example: the results windows alone.
  {
    MainWindow window(prompter, (examples + "/learn1.ovi").toStdString());
    window.resize(900, 560);
    window.workbench().results.display.parameters = true;
    window.workbench().resultsFormat = 782;
    window.setDialogRunner([](QDialog& d) {
      d.accept();
      return static_cast<int>(QDialog::Accepted);
    });
    window.workbench().results.ran.compare = {true, true, false, true, false};
    window.dispatch(ovaro::ui::cmd::kCompare);
    window.show();
    QApplication::processEvents();
    ok &= save(*window.resultsView(), out, "results_compare", false);
  }

  // Each dialog as it opens on a fresh workbench.
  ovaro::NullProgress progress;
  ovaro::Workbench wb(prompter, progress);
  wb.results.ran.compare = {true, true, false, true, false};
  wb.updatingMethods.hcfr = true;
  {
    ovaro::ui::MethodDialog d(wb.results.ran.compare);
    ok &= save(d, out, "dialog_method");
  }
  {
    ovaro::ui::MethodWoDialog d(wb.updatingMethods);
    ok &= save(d, out, "dialog_method_wo");
  }
  {
    ovaro::ui::DebugPrintOptionsDialog d(wb.debug.switches);
    ok &= save(d, out, "dialog_debug_print_options");
  }
  {
    ovaro::ui::DebugPrintSheet d(wb.debug);
    for (int page = 0; page < d.pages()->count(); ++page) {
      d.pages()->setCurrentIndex(page);
      ok &= save(d, out, QString("dialog_debug_sheet_%1").arg(page + 1));
    }
  }
  {
    ovaro::ui::DisplayOptionsDialog d(wb.results.display);
    ok &= save(d, out, "dialog_displays");
  }
  {
    ovaro::ui::ResultsPreferencesDialog d(wb.results.display, wb.resultsFormat);
    ok &= save(d, out, "dialog_pref_results");
  }
  {
    ovaro::ui::SeedDialog d(wb.random);
    ok &= save(d, out, "dialog_pref_seed");
  }
  {
    ovaro::ui::CautionDialog d(wb.caution);
    ok &= save(d, out, "dialog_caution_exp");
  }
  {
    ovaro::ui::ImportColumnsDialog d(wb.shell.importMatrixColumns);
    ok &= save(d, out, "dialog_import_cols");
  }
  {
    ovaro::ui::AboutDialog d;
    ok &= save(d, out, "dialog_about");
  }
  {
    // The example browser on the library's table, loading nothing.
    const ovaro::ExampleTable table =
        ovaro::ExampleTable::read((examples + "/examples.tsv").toStdString());
    ovaro::ui::ExamplesBrowser d(table, [](int) {});
    ok &= save(d, out, "examples_browser");
  }
  ok &= ovaro::saveModelBuildingShots(examples, [&out](QWidget& w, const QString& name) {
    return save(w, out, name, name != "matrix_editor");
  });
  // The plot windows of a comparison and of two scenarios.
  ok &= ovaro::screenshots::savePlotScreenshots(
      examples, [&](QWidget& w, const QString& name) { return save(w, out, name, false); });
  return ok ? 0 : 1;
}
