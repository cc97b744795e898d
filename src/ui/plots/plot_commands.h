// The plot commands of the workbench's Results menu and the scenario naming after a solve.
//
// Plot: Single Run and Plot: Scenarios run the plot loop: the plot dialog; when the user chose
// "Plot", the plot window opens and the message "Plot" (or "Plot Scenarios"), captioned
// "Continue Plotting", waits while the user looks at it (the window's PLOT menu stays usable, so
// the picture can be saved); then the window closes and the dialog opens again, until the user
// chooses "Done". A plot without series is answered by "No series selected." (caption
// "Warning!") and the dialog opens again; so is a combination whose methods have not all been
// solved, with a message that says which method is missing.
//
// Plot: Spread over Runs draws the spread of a state or control over the runs of the last
// comparison, per compared method, in a window that stays open. Criterion Summary shows the
// summary of the last comparison's criteria beside the results.
#pragma once

#include <QPointer>
#include <functional>
#include <string>

#include "results/workbench.h"
#include "ui/plots/criterion_summary_window.h"
#include "ui/plots/plot_window.h"

class QDialog;

namespace ovaro::ui {

// What the plot commands need from the window that runs them.
struct PlotHost {
  PlotHost(Workbench& workbench, std::function<int(QDialog&)> dialogRunner, QWidget* window)
      : wb(workbench), runDialog(std::move(dialogRunner)), owner(window) {}

  Workbench& wb;
  std::function<int(QDialog&)> runDialog;  // shows a modal dialog, returns its result code
  QWidget* owner = nullptr;                // the main window
  // Called with each plot window once it is shown, before the "Continue Plotting" message (tests
  // look at the window here); may be empty.
  std::function<void(PlotWindow&)> onPlotShown;
};

// The two plot loops (commands 150 and 154).
void runSingleRunPlots(const PlotHost& host);
void runScenarioPlots(const PlotHost& host);

// The spread window of the last comparison, after the user has chosen the variable; nullptr when
// there is no comparison or the dialog was cancelled. The window belongs to the owner.
PlotWindow* runSpreadPlot(const PlotHost& host);

// Opens (or brings up to date) the criterion summary window of the last comparison; nullptr, and
// a message, when no comparison has been run. The window belongs to the owner.
CriterionSummaryWindow* showCriterionSummary(const PlotHost& host);

// The name of a new scenario: the "Scenario Acryonm and Description" dialog, with the method's
// name proposed as its acronym.
ScenarioName askScenarioName(const PlotHost& host, const std::string& method);

}  // namespace ovaro::ui
