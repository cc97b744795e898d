// The dialogs of the plots: "PLOTS" (what the single-run plot shows), "PLOTS-SCENARIOS" (what the
// scenario plot shows), "Scenario Acryonm and Description" (the name of a new scenario) and the
// choice of the variable whose spread over the runs of a comparison is drawn.
//
// The two plot dialogs edit the choices the workbench keeps from one plot to the next; a click
// writes its choice at once, as in every option dialog of the workbench. "Plot" closes the dialog
// accepted (draw the plot), "Done" rejected (the user has finished plotting).
#pragma once

#include <QDialog>
#include <array>

#include "model/model.h"
#include "results/plot_series.h"
#include "results/scenario_store.h"

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace ovaro::ui {

class PlotsDialog final : public QDialog {
  Q_OBJECT
 public:
  PlotsDialog(PlotChoices& choices, const Model& model, QWidget* parent = nullptr);

  QListWidget* variables() const { return variables_; }
  QButtonGroup* kinds() const { return kinds_; }
  QButtonGroup* pathTypes() const { return pathTypes_; }
  QButtonGroup* methods() const { return methods_; }
  QPushButton* plotButton() const { return plot_; }
  QPushButton* doneButton() const { return done_; }

 private:
  void fillVariables();
  void enablePathTypes();

  PlotChoices& choices_;
  const Model& model_;
  QListWidget* variables_;
  QButtonGroup* kinds_;
  QButtonGroup* pathTypes_;
  QButtonGroup* methods_;
  QPushButton* plot_;
  QPushButton* done_;
};

class ScenarioPlotsDialog final : public QDialog {
  Q_OBJECT
 public:
  ScenarioPlotsDialog(ScenarioPlotChoices& choices, const ScenarioStore& store, const Model& model,
                      QWidget* parent = nullptr);

  QListWidget* variables() const { return variables_; }
  QButtonGroup* kinds() const { return kinds_; }
  QButtonGroup* pathTypes() const { return pathTypes_; }
  // "First" .. "Fifth": item 0 is "(none)", item k scenario k.
  QComboBox* scenario(int slot) const { return scenarios_[static_cast<std::size_t>(slot)]; }
  QCheckBox* deselectBox() const { return deselect_; }
  QPushButton* plotButton() const { return plot_; }
  QPushButton* doneButton() const { return done_; }

 private:
  void fillVariables();

  ScenarioPlotChoices& choices_;
  const Model& model_;
  QListWidget* variables_;
  QButtonGroup* kinds_;
  QButtonGroup* pathTypes_;
  std::array<QComboBox*, kMaxChosenScenarios> scenarios_{};
  QCheckBox* deselect_;
  QPushButton* plot_;
  QPushButton* done_;
};

// "Scenario Acryonm and Description": fields "Acronym" (8 characters) and "Description" (47),
// the acronym proposed from the method that made the solution. OK writes both into `name`;
// Cancel leaves it as it was.
class ScenarioNameDialog final : public QDialog {
  Q_OBJECT
 public:
  ScenarioNameDialog(ScenarioName& name, QWidget* parent = nullptr);
  QLineEdit* acronymField() const { return acronym_; }
  QLineEdit* descriptionField() const { return description_; }
  void accept() override;

 private:
  ScenarioName& name_;
  QLineEdit* acronym_;
  QLineEdit* description_;
};

// "Spread over Runs": a state or a control, and which one.
class SpreadDialog final : public QDialog {
  Q_OBJECT
 public:
  // `states` and `variable` are written at once, as they are clicked.
  SpreadDialog(bool& states, int& variable, const Model& model, QWidget* parent = nullptr);
  QListWidget* variables() const { return variables_; }
  QButtonGroup* kinds() const { return kinds_; }

 private:
  void fillVariables();

  bool& states_;
  int& variable_;
  const Model& model_;
  QListWidget* variables_;
  QButtonGroup* kinds_;
};

}  // namespace ovaro::ui
