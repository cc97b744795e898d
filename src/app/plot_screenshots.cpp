#include "app/plot_screenshots.h"

#include <QDialog>
#include <QPainter>

#include "results/plot_layout.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"
#include "ui/plots/criterion_summary_window.h"
#include "ui/plots/plot_window.h"

namespace ovaro::screenshots {

namespace {

using ui::MainWindow;
using ui::PlotWindow;

bool savePlot(const QString& name, const QString& title, const PlotLayout& layout,
              Prompter& prompter, const std::function<bool(QWidget&, const QString&)>& save) {
  PlotWindow window(
      name, title, [layout](QPainter& p, const QRect& r) { ui::paintPlot(p, r, layout); },
      prompter);
  window.resize(720, 540);
  return save(window, name == "PlotWin" ? "plot_single_run" : "plot_scenarios");
}

}  // namespace

bool savePlotScreenshots(const QString& examples,
                         const std::function<bool(QWidget&, const QString&)>& save) {
  bool ok = true;
  RecordingPrompter prompter;
  const std::string learn = (examples + "/learn1.ovi").toStdString();
  auto accept = [](QDialog& d) {
    d.accept();
    return static_cast<int>(QDialog::Accepted);
  };

  // A comparison of HCFR, CE and OLF: the last run's output gap against its target, the spread
  // of the output gap over all runs, and the summary of the criteria.
  {
    MainWindow window(prompter, learn);
    window.setDialogRunner(accept);
    Workbench& wb = window.workbench();
    wb.results.ran.compare = {true, true, false, true, false};
    window.dispatch(ui::cmd::kCompare);
    const PlotChoices choices{0, kPlotStates, kPathOptAndDes, 2174};
    const SeriesGathering g = gatherSeries(wb.results, choices);
    if (g.series.empty()) return false;
    ok &= savePlot("PlotWin", "Plot: Single Run",
                   layoutPlot(g.series, plotLabels(wb.model, kPlotStates, 0,
                                                   static_cast<int>(g.series[0].values.size()))),
                   prompter, save);
    const RunSpread spread = spreadOverRuns(*wb.results.comparison, true, 0);
    PlotLabels labels =
        plotLabels(wb.model, kPlotStates, 0, static_cast<int>(spread.desired.size()));
    labels.title += " - median and 10-90% of " + std::to_string(spread.runs) + " runs";
    const SpreadLayout bands = layoutSpread(spread, labels);
    PlotWindow spreadWindow(
        "PlotWinSpread", "Plot: Spread over Runs",
        [bands](QPainter& p, const QRect& r) { ui::paintSpread(p, r, bands); }, prompter);
    spreadWindow.resize(720, 540);
    ok &= save(spreadWindow, "plot_spread");
    if (auto* summary = window.findChild<ui::CriterionSummaryWindow*>())
      ok &= save(*summary, "criterion_summary");
  }

  // Two scenarios of the learning model, QLP and OLF without updating, with the desired path.
  {
    MainWindow window(prompter, learn);
    Workbench& wb = window.workbench();
    wb.shell.askScenarioQuestion = 1;
    wb.nameScenario = [](const std::string& method) {
      return ScenarioName{method, method == "QLP" ? "Deterministic" : "Open loop feedback"};
    };
    window.dispatch(ui::cmd::kSolveQlp);
    window.dispatch(ui::cmd::kSolveOlf);
    ScenarioPlotChoices choices;
    choices.variable = 0;
    choices.kind = kScenarioControls;
    choices.pathType = kScenarioOptAndDesired;
    choices.chosen = {1, 2, 0, 0, 0};
    const std::vector<PlotSeries> series = gatherScenarioSeries(wb.scenarios, choices);
    if (series.empty()) return false;
    ok &= savePlot("PlotWinSce", "Plot: Scenarios",
                   layoutPlot(series, plotLabels(wb.model, kPlotControls, 0,
                                                 static_cast<int>(series[0].values.size()))),
                   prompter, save);
  }
  return ok;
}

}  // namespace ovaro::screenshots
