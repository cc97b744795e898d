#include "ui/plots/plot_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "results/display_selection.h"

namespace ovaro::ui {

namespace {

QString qtText(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

QRadioButton* radio(QGroupBox* box, QButtonGroup* group, const QString& text, int id) {
  auto* button = new QRadioButton(text, box);
  button->setObjectName(QStringLiteral("radio%1").arg(id));
  group->addButton(button, id);
  box->layout()->addWidget(button);
  return button;
}

QGroupBox* groupBox(const QString& title, QWidget* parent) {
  auto* box = new QGroupBox(title, parent);
  new QVBoxLayout(box);
  return box;
}

void check(QButtonGroup* group, int id) {
  if (QAbstractButton* b = group->button(id)) b->setChecked(true);
}

// The variables of a kind as the list shows them: the acronym and, where there is one, the name.
void fillList(QListWidget* list, const Model& model, int kind, int selected) {
  const QSignalBlocker block(list);
  list->clear();
  const std::vector<std::string> acronyms = plotVariableNames(model, kind);
  const LabelTable* table = kind == kPlotStates     ? &model.states
                            : kind == kPlotControls ? &model.controls
                                                    : &model.parameters;
  for (std::size_t i = 0; i < acronyms.size(); ++i) {
    QString text = QString::fromStdString(acronyms[i]);
    if (i < table->names.size()) {
      const QString name = QString::fromStdString(table->names[i]).trimmed();
      if (!name.isEmpty()) text += QStringLiteral("  ") + name;
    }
    list->addItem(text);
  }
  list->setCurrentRow(selected >= 0 && selected < list->count() ? selected : -1);
}

// Plot (accepted) and Done (rejected).
QDialogButtonBox* plotDone(QDialog* dialog, QPushButton*& plot, QPushButton*& done) {
  auto* box = new QDialogButtonBox(dialog);
  plot = box->addButton(QObject::tr("Plot"), QDialogButtonBox::AcceptRole);
  done = box->addButton(QObject::tr("Done"), QDialogButtonBox::RejectRole);
  plot->setDefault(true);
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return box;
}

constexpr std::array<std::pair<int, const char*>, 6> kPathTypes{
    {{kPathOptimum, "Optimum"},
     {kPathOptAndDes, "Opt and Des"},
     {kPathDifference, "Difference"},
     {kPathEstimated, "Estimated"},
     {kPathTrue, "True"},
     {kPathEstAndTrue, "Est and True"}}};

int plotKindOfScenarioKind(int kind) {
  return kind == kScenarioStates     ? kPlotStates
         : kind == kScenarioControls ? kPlotControls
                                     : kPlotParameters;
}

}  // namespace

// ---- PLOTS ----

PlotsDialog::PlotsDialog(PlotChoices& choices, const Model& model, QWidget* parent)
    : QDialog(parent),
      choices_(choices),
      model_(model),
      variables_(new QListWidget(this)),
      kinds_(new QButtonGroup(this)),
      pathTypes_(new QButtonGroup(this)),
      methods_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("PLOTS"));
  setWindowTitle(tr("Plot: Single Run"));
  variables_->setObjectName(QStringLiteral("variables"));

  QGroupBox* kinds = groupBox(tr("Variable"), this);
  radio(kinds, kinds_, tr("States"), kPlotStates);
  radio(kinds, kinds_, tr("Controls"), kPlotControls);
  radio(kinds, kinds_, tr("Parameters"), kPlotParameters);
  QGroupBox* paths = groupBox(tr("Path"), this);
  for (const auto& [id, label] : kPathTypes) radio(paths, pathTypes_, tr(label), id);
  auto* methods = new QGroupBox(tr("Solution Method"), this);
  auto* grid = new QGridLayout(methods);
  for (int code = kFirstSolutionCode; code <= kLastSolutionCode; ++code) {
    auto* button = new QRadioButton(qtText(plotMethodLabel(code)), methods);
    button->setObjectName(QStringLiteral("radio%1").arg(code));
    methods_->addButton(button, code);
    // Single solutions on the left, the combinations on the right.
    const int index = code - kFirstSolutionCode;
    grid->addWidget(button, index < 7 ? index : index - 7, index < 7 ? 0 : 1);
  }

  check(kinds_, choices_.kind);
  check(pathTypes_, choices_.pathType);
  check(methods_, choices_.method);
  fillVariables();
  enablePathTypes();

  auto* left = new QVBoxLayout;
  left->addWidget(new QLabel(tr("Variables"), this));
  left->addWidget(variables_);
  left->addWidget(kinds);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left);
  columns->addWidget(paths);
  columns->addWidget(methods);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  layout->addWidget(plotDone(this, plot_, done_));

  connect(variables_, &QListWidget::currentRowChanged, this,
          [this](int row) { choices_.variable = row; });
  connect(kinds_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (!on || id == choices_.kind) return;
    choices_.kind = id;
    // A variable of another kind is another variable: none is chosen until the user picks one.
    choices_.variable = -1;
    fillVariables();
    // The path type moves to its counterpart of the other family (Optimum <-> Estimated, ...).
    const bool parameters = id == kPlotParameters;
    const bool parameterPath = choices_.pathType >= kPathEstimated;
    if (parameters != parameterPath)
      choices_.pathType +=
          parameters ? kPathEstimated - kPathOptimum : kPathOptimum - kPathEstimated;
    check(pathTypes_, choices_.pathType);
    enablePathTypes();
  });
  connect(pathTypes_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (on) choices_.pathType = id;
  });
  connect(methods_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (on) choices_.method = id;
  });
}

void PlotsDialog::fillVariables() {
  fillList(variables_, model_, choices_.kind, choices_.variable);
}

void PlotsDialog::enablePathTypes() {
  const bool parameters = choices_.kind == kPlotParameters;
  for (const auto& [id, label] : kPathTypes)
    pathTypes_->button(id)->setEnabled((id >= kPathEstimated) == parameters);
}

// ---- PLOTS-SCENARIOS ----

ScenarioPlotsDialog::ScenarioPlotsDialog(ScenarioPlotChoices& choices, const ScenarioStore& store,
                                         const Model& model, QWidget* parent)
    : QDialog(parent),
      choices_(choices),
      model_(model),
      variables_(new QListWidget(this)),
      kinds_(new QButtonGroup(this)),
      pathTypes_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("PLOTS-SCENARIOS"));
  setWindowTitle(tr("Plot: Scenarios"));
  variables_->setObjectName(QStringLiteral("variables"));

  QGroupBox* kinds = groupBox(tr("Variable"), this);
  radio(kinds, kinds_, tr("States"), kScenarioStates);
  radio(kinds, kinds_, tr("Controls"), kScenarioControls);
  radio(kinds, kinds_, tr("Parameters"), kScenarioParameters);
  QGroupBox* paths = groupBox(tr("Path"), this);
  radio(paths, pathTypes_, tr("Optimum"), kScenarioOptimum);
  radio(paths, pathTypes_, tr("Opt and Desired"), kScenarioOptAndDesired);
  radio(paths, pathTypes_, tr("Difference"), kScenarioDifference);
  radio(paths, pathTypes_, tr("MultI Desired"), kScenarioMultiDesired);

  auto* chosen = new QGroupBox(tr("Scenarios"), this);
  auto* form = new QFormLayout(chosen);
  constexpr std::array<const char*, kMaxChosenScenarios> kSlots{"First", "Second", "Third",
                                                                "Fourth", "Fifth"};
  for (std::size_t slot = 0; slot < kSlots.size(); ++slot) {
    auto* combo = new QComboBox(chosen);
    combo->setObjectName(QString::fromLatin1(kSlots[slot]));
    combo->addItem(tr("(none)"));
    for (int s = 1; s <= store.count; ++s) {
      const auto i = static_cast<std::size_t>(s - 1);
      combo->addItem(QStringLiteral("%1  %2  %3")
                         .arg(s)
                         .arg(QString::fromStdString(store.acronyms[i]))
                         .arg(QString::fromStdString(store.descriptions[i])));
    }
    const int current = choices_.chosen[slot];
    combo->setCurrentIndex(current >= 1 && current <= store.count ? current : 0);
    connect(combo, &QComboBox::currentIndexChanged, this,
            [this, slot](int index) { choices_.chosen[slot] = index; });
    scenarios_[slot] = combo;
    form->addRow(tr(kSlots[slot]), combo);
  }
  deselect_ = new QCheckBox(tr("Deselect Scenarios After Each Plot"), this);
  deselect_->setChecked(choices_.deselectAfterPlot);

  check(kinds_, choices_.kind);
  check(pathTypes_, choices_.pathType);
  fillVariables();

  auto* left = new QVBoxLayout;
  left->addWidget(new QLabel(tr("Variables"), this));
  left->addWidget(variables_);
  left->addWidget(kinds);
  auto* right = new QVBoxLayout;
  right->addWidget(chosen);
  right->addWidget(deselect_);
  auto* columns = new QHBoxLayout;
  columns->addLayout(left);
  columns->addWidget(paths);
  columns->addLayout(right);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  layout->addWidget(plotDone(this, plot_, done_));

  connect(variables_, &QListWidget::currentRowChanged, this,
          [this](int row) { choices_.variable = row; });
  connect(kinds_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (!on || id == choices_.kind) return;
    choices_.kind = id;
    choices_.variable = -1;
    fillVariables();
  });
  connect(pathTypes_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (on) choices_.pathType = id;
  });
  connect(deselect_, &QCheckBox::toggled, this,
          [this](bool on) { choices_.deselectAfterPlot = on; });
}

void ScenarioPlotsDialog::fillVariables() {
  fillList(variables_, model_, plotKindOfScenarioKind(choices_.kind), choices_.variable);
}

// ---- Scenario Acryonm and Description ----

ScenarioNameDialog::ScenarioNameDialog(ScenarioName& name, QWidget* parent)
    : QDialog(parent),
      name_(name),
      acronym_(new QLineEdit(QString::fromStdString(name.acronym), this)),
      description_(new QLineEdit(QString::fromStdString(name.description), this)) {
  setObjectName(QStringLiteral("Scenario Acryonm and Description"));
  setWindowTitle(QStringLiteral("Scenario Acryonm and Description"));
  acronym_->setObjectName(QStringLiteral("Acronym"));
  acronym_->setMaxLength(8);
  description_->setObjectName(QStringLiteral("Description"));
  description_->setMaxLength(47);
  description_->setMinimumWidth(320);
  auto* form = new QFormLayout;
  form->addRow(tr("Acronym"), acronym_);
  form->addRow(tr("Description"), description_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(form);
  layout->addWidget(buttons);
}

void ScenarioNameDialog::accept() {
  name_.acronym = acronym_->text().toStdString();
  name_.description = description_->text().toStdString();
  QDialog::accept();
}

// ---- Spread over Runs ----

SpreadDialog::SpreadDialog(bool& states, int& variable, const Model& model, QWidget* parent)
    : QDialog(parent),
      states_(states),
      variable_(variable),
      model_(model),
      variables_(new QListWidget(this)),
      kinds_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("SpreadOverRuns"));
  setWindowTitle(tr("Plot: Spread over Runs"));
  variables_->setObjectName(QStringLiteral("variables"));
  QGroupBox* kinds = groupBox(tr("Variable"), this);
  radio(kinds, kinds_, tr("States"), kPlotStates);
  radio(kinds, kinds_, tr("Controls"), kPlotControls);
  check(kinds_, states_ ? kPlotStates : kPlotControls);
  fillVariables();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("Variables"), this));
  layout->addWidget(variables_);
  layout->addWidget(kinds);
  layout->addWidget(buttons);
  connect(variables_, &QListWidget::currentRowChanged, this, [this](int row) { variable_ = row; });
  connect(kinds_, &QButtonGroup::idToggled, this, [this](int id, bool on) {
    if (!on || (id == kPlotStates) == states_) return;
    states_ = id == kPlotStates;
    variable_ = -1;
    fillVariables();
  });
}

void SpreadDialog::fillVariables() {
  fillList(variables_, model_, states_ ? kPlotStates : kPlotControls, variable_);
}

}  // namespace ovaro::ui
