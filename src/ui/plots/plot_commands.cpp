#include "ui/plots/plot_commands.h"

#include <QDialog>

#include "results/plot_layout.h"
#include "ui/plots/plot_dialogs.h"
#include "ui/qt_prompter.h"

namespace ovaro::ui {

namespace {

// Shows the plot window and waits at "Continue Plotting"; the window is destroyed on return.
// Message boxes block only the main window meanwhile, so the plot window's PLOT menu works.
void showPlotAndWait(const PlotHost& host, const QString& className, const QString& title,
                     PictureFunction picture, const char* message) {
  PlotWindow window(className, title, std::move(picture), host.wb.prompter);
  window.show();
  if (host.onPlotShown) host.onPlotShown(window);
  auto* qt = dynamic_cast<QtPrompter*>(&host.wb.prompter);
  if (qt != nullptr) qt->setWindowModal(true);
  host.wb.prompter.inform(message, "Continue Plotting");
  if (qt != nullptr) qt->setWindowModal(false);
}

void noSeries(Prompter& prompter) {
  prompter.inform(kNoSeriesSelected, "Warning!", Icon::Exclamation);
}

}  // namespace

void runSingleRunPlots(const PlotHost& host) {
  Workbench& wb = host.wb;
  for (;;) {
    PlotsDialog dialog(wb.plotChoices, wb.model, host.owner);
    if (host.runDialog(dialog) != QDialog::Accepted) return;  // "Done": the user has finished
    const PlotChoices& c = wb.plotChoices;
    SeriesGathering g = gatherSeries(wb.results, c);
    if (!g.missingMethod.empty()) {
      wb.prompter.inform("There is no " + g.missingMethod +
                             " solution of this variable to plot. Solve the model by that "
                             "method first.",
                         "Ovaro", Icon::Information);
      continue;
    }
    if (g.series.empty()) {
      noSeries(wb.prompter);
      continue;
    }
    const int points = static_cast<int>(g.series.front().values.size());
    const PlotLayout layout =
        layoutPlot(g.series, plotLabels(wb.model, c.kind, c.variable, points));
    showPlotAndWait(
        host, QStringLiteral("PlotWin"), QObject::tr("Plot: Single Run"),
        [layout](QPainter& p, const QRect& r) { paintPlot(p, r, layout); }, "Plot");
  }
}

void runScenarioPlots(const PlotHost& host) {
  Workbench& wb = host.wb;
  for (;;) {
    ScenarioPlotsDialog dialog(wb.scenarioPlotChoices, wb.scenarios, wb.model, host.owner);
    if (host.runDialog(dialog) != QDialog::Accepted) return;
    ScenarioPlotChoices& c = wb.scenarioPlotChoices;
    const std::vector<PlotSeries> series = gatherScenarioSeries(wb.scenarios, c);
    if (series.empty()) {
      noSeries(wb.prompter);
      continue;
    }
    const int kind = c.kind == kScenarioStates ? kPlotStates : kPlotControls;
    const int points = static_cast<int>(series.front().values.size());
    const PlotLayout layout = layoutPlot(series, plotLabels(wb.model, kind, c.variable, points));
    showPlotAndWait(
        host, QStringLiteral("PlotWinSce"), QObject::tr("Plot: Scenarios"),
        [layout](QPainter& p, const QRect& r) { paintPlot(p, r, layout); }, "Plot Scenarios");
    if (c.deselectAfterPlot) c.chosen = {};
  }
}

PlotWindow* runSpreadPlot(const PlotHost& host) {
  Workbench& wb = host.wb;
  const std::optional<ComparisonRuns>& runs = wb.results.comparison;
  if (!runs || runs->runs < 1) {
    wb.prompter.inform(
        "The spread is drawn from the runs of a comparison. Run Solve: Compare first.", "Ovaro",
        Icon::Information);
    return nullptr;
  }
  bool states = true;
  int variable = 0;
  SpreadDialog dialog(states, variable, wb.model, host.owner);
  if (host.runDialog(dialog) != QDialog::Accepted) return nullptr;
  const RunSpread spread = spreadOverRuns(*runs, states, variable);
  if (spread.bands.empty()) {
    noSeries(wb.prompter);
    return nullptr;
  }
  const int kind = states ? kPlotStates : kPlotControls;
  PlotLabels labels = plotLabels(wb.model, kind, variable, static_cast<int>(spread.desired.size()));
  labels.title += " - median and 10-90% of " + std::to_string(spread.runs) + " runs";
  const SpreadLayout layout = layoutSpread(spread, labels);
  auto* window = new PlotWindow(
      QStringLiteral("PlotWinSpread"), QObject::tr("Plot: Spread over Runs"),
      [layout](QPainter& p, const QRect& r) { paintSpread(p, r, layout); }, wb.prompter,
      host.owner);
  window->setAttribute(Qt::WA_DeleteOnClose);
  window->show();
  return window;
}

CriterionSummaryWindow* showCriterionSummary(const PlotHost& host) {
  Workbench& wb = host.wb;
  const std::optional<ComparisonRuns>& runs = wb.results.comparison;
  if (!runs || runs->runs < 1) {
    wb.prompter.inform("The criterion summary needs a comparison. Run Solve: Compare first.",
                       "Ovaro", Icon::Information);
    return nullptr;
  }
  auto* window = host.owner == nullptr
                     ? nullptr
                     : dynamic_cast<CriterionSummaryWindow*>(host.owner->findChild<QWidget*>(
                           QStringLiteral("CriterionSummary"), Qt::FindDirectChildrenOnly));
  if (window == nullptr) {
    window = new CriterionSummaryWindow(host.owner);
    // Beside the main window, where the results are.
    if (host.owner != nullptr) window->move(host.owner->frameGeometry().topRight() + QPoint(8, 0));
  }
  window->showSummary(summarizeCriteria(runs->criteria, runs->selected));
  window->show();
  window->raise();
  return window;
}

ScenarioName askScenarioName(const PlotHost& host, const std::string& method) {
  ScenarioName name{method, {}};
  ScenarioNameDialog dialog(name, host.owner);
  host.runDialog(dialog);
  return name;
}

}  // namespace ovaro::ui
