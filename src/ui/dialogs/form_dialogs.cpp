#include "ui/dialogs/form_dialogs.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "model/conversion.h"
#include "model/options.h"

namespace ovaro::ui {

namespace {

constexpr int kCountChars = 8;

QString qs(const std::string& text) {
  return QString::fromStdString(text);
}

void addOkCancel(QDialog* dialog, QBoxLayout* layout) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  layout->addWidget(box);
}

QLineEdit* idField(QWidget* parent, int id, const std::string& value, int maxChars) {
  auto* edit = new QLineEdit(qs(value), parent);
  edit->setObjectName(QStringLiteral("edit%1").arg(id));
  edit->setMaxLength(maxChars);
  refuseFieldSeparator(edit);
  return edit;
}

// One exclusive group of radio buttons writing its option into `flag` when clicked.
QButtonGroup* radioGroup(QWidget* owner, QBoxLayout* into, const QString& caption,
                         const std::vector<std::pair<int, QString>>& options, int& flag) {
  auto* frame = new QGroupBox(caption, owner);
  auto* layout = new QVBoxLayout(frame);
  auto* group = new QButtonGroup(owner);
  for (const auto& [id, label] : options) {
    auto* button = new QRadioButton(label, frame);
    button->setChecked(flag == id);
    group->addButton(button, id);
    layout->addWidget(button);
  }
  QObject::connect(group, &QButtonGroup::idClicked, owner, [&flag](int id) { flag = id; });
  into->addWidget(frame);
  return group;
}

}  // namespace

void refuseFieldSeparator(QLineEdit* edit) {
  edit->setValidator(
      new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^~]*")), edit));
}

// ---------------------------------------------------------------------------------------------

NameDialog::NameDialog(Model& model, QWidget* parent) : QDialog(parent), model_(model) {
  setObjectName(QStringLiteral("Name"));
  setWindowTitle(QStringLiteral("Name"));
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  acronym_ = idField(this, 300, model.acronym, kModelAcronymChars);
  name_ = idField(this, 301, model.name, kModelNameChars);
  name_->setMinimumWidth(360);
  form->addRow(QStringLiteral("Acronym"), acronym_);
  form->addRow(QStringLiteral("Name"), name_);
  layout->addLayout(form);
  addOkCancel(this, layout);
}

QLineEdit* NameDialog::field(int id) const {
  return id == 300 ? acronym_ : id == 301 ? name_ : nullptr;
}

void NameDialog::accept() {
  model_.acronym = acronym_->text().toStdString();
  model_.name = name_->text().toStdString();
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

SizeDialog::SizeDialog(Dimensions& dims, QWidget* parent) : QDialog(parent), dims_(dims) {
  setObjectName(QStringLiteral("Size"));
  setWindowTitle(QStringLiteral("Size"));
  auto* layout = new QVBoxLayout(this);
  auto* grid = new QGridLayout;
  struct Row {
    int id;
    const char* caption;
    std::string text;
  };
  const std::vector<Row> left{{303, "State Variables", dims.n.text},
                              {302, "Control Variables", dims.m.text},
                              {305, "Exogenous Variables", dims.l.text},
                              {309, "Initial Period", dims.initialPeriod.text},
                              {310, "Terminal Period", dims.terminalPeriod.text}};
  const std::vector<Row> right{{311, "Maximum Lead", dims.maxLead.text},
                               {312, "Iteration Limit", dims.iterlim.text},
                               {313, "Convergence Tolerance", dims.toleranceText},
                               {306, "Uncertain Parameters", dims.np.text},
                               {307, "Monte Carlo Runs", dims.nmc.text},
                               {308, "Observation Variables", dims.ny.text}};
  auto place = [&](const std::vector<Row>& rows, int column) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
      auto* edit = idField(this, rows[i].id, rows[i].text, kCountChars);
      edit->setFixedWidth(90);
      fields_.emplace_back(rows[i].id, edit);
      grid->addWidget(new QLabel(QLatin1String(rows[i].caption), this), static_cast<int>(i),
                      column);
      grid->addWidget(edit, static_cast<int>(i), column + 1);
    }
  };
  place(left, 0);
  place(right, 2);
  grid->setHorizontalSpacing(14);
  grid->addWidget(new QLabel(QStringLiteral("If smaller than 6 decimal"), this), 6, 2, 1, 2);
  grid->addWidget(new QLabel(QStringLiteral("digits enter in E format"), this), 7, 2, 1, 2);
  layout->addLayout(grid);
  addOkCancel(this, layout);
}

QLineEdit* SizeDialog::field(int id) const {
  for (const auto& [fieldId, edit] : fields_) {
    if (fieldId == id) return edit;
  }
  return nullptr;
}

void SizeDialog::accept() {
  auto text = [this](int id) { return field(id)->text().toStdString(); };
  dims_.n.setText(text(303));
  dims_.m.setText(text(302));
  dims_.l.setText(text(305));
  dims_.initialPeriod.setText(text(309));
  dims_.terminalPeriod.setText(text(310));
  dims_.maxLead.setText(text(311));
  dims_.iterlim.setText(text(312));
  dims_.setToleranceText(text(313));
  dims_.np.setText(text(306));
  dims_.nmc.setText(text(307));
  dims_.ny.setText(text(308));
  dims_.recomputePeriods();
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

StochasticTermsDialog::StochasticTermsDialog(SpecFlags& flags, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("Stochastic_Terms"));
  setWindowTitle(QStringLiteral("Stochastic Terms"));
  auto* layout = new QVBoxLayout(this);
  buttons_ = radioGroup(
      this, layout, QStringLiteral("Stochastic Terms"),
      {{opt::kDeterministic, QStringLiteral("Deterministic")},
       {opt::kAdditiveNoise, QStringLiteral("Stochastic with Additive Noise")},
       {opt::kParameterUncertainty, QStringLiteral("Stochastic with Parameter Uncertainty")},
       {opt::kMeasurementError, QStringLiteral("Stochastic with Measurement Error")}},
      flags.stochTerms);
  addOkCancel(this, layout);
}

// ---------------------------------------------------------------------------------------------

FormsDialog::FormsDialog(SpecFlags& flags, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("Functional_Forms"));
  setWindowTitle(QStringLiteral("Form Specifications"));
  auto* layout = new QVBoxLayout(this);
  auto* columns = new QGridLayout;
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  auto group = [&](QVBoxLayout* into, const char* caption,
                   std::vector<std::pair<int, QString>> options, int& flag) {
    groups_.push_back(radioGroup(this, into, QLatin1String(caption), options, flag));
  };
  const QString star = QStringLiteral("*  ");
  group(left, "Criterion",
        {{opt::kQuadraticTracking, star + "Quadratic Tracking"},
         {opt::kQuadraticForm, QStringLiteral("Quadratic Form")}},
        flags.criterionForm);
  group(left, "System Equations",
        {{opt::kRegular, star + "Regular"}, {opt::kPindyck, QStringLiteral("Pindyck")}},
        flags.systemForm);
  group(left, "Forward Variables",
        {{opt::kForwardNo, star + "No"}, {opt::kForwardYes, QStringLiteral("Yes")}},
        flags.forwardVars);
  group(left, "Policy to Parameter Effect",
        {{opt::kPolicyNo, star + "No"}, {opt::kPolicyYes, QStringLiteral("Yes")}},
        flags.policyToParam);
  group(
      left, "Z",
      {{opt::kZConstant, QStringLiteral("Constant")}, {opt::kZTimeVarying, star + "Time Varying"}},
      flags.zForm);
  group(right, "W",
        {{opt::kWConstant, QStringLiteral("Constant")},
         {opt::kWTerminalDifferent, star + "Terminal Diff"},
         {opt::kWTimeVarying, QStringLiteral("Time Varying")}},
        flags.wForm);
  group(right, "Lambda",
        {{opt::kLambdaConstant, star + "Constant"},
         {opt::kLambdaTimeVarying, QStringLiteral("Time Varying")}},
        flags.lambdaForm);
  group(right, "XDES",
        {{opt::kXdesConstant, QStringLiteral("Constant")},
         {opt::kXdesTimeVarying, star + "Time Varying"}},
        flags.xdesForm);
  group(right, "UDES",
        {{opt::kUdesConstant, QStringLiteral("Constant")},
         {opt::kUdesTimeVarying, star + "Time Varying"}},
        flags.udesForm);
  left->addStretch();
  right->addStretch();
  columns->addLayout(left, 0, 0);
  columns->addLayout(right, 0, 1);
  layout->addLayout(columns);
  layout->addWidget(
      new QLabel(QStringLiteral("*  Required Options When Using the VELD or VELDPC Code"), this));
  addOkCancel(this, layout);
}

QButtonGroup* FormsDialog::groupOf(int id) const {
  for (QButtonGroup* g : groups_) {
    if (g->button(id) != nullptr) return g;
  }
  return nullptr;
}

// ---------------------------------------------------------------------------------------------

SourceRandomDialog::SourceRandomDialog(SpecFlags& flags, RandomSwitches& switches, QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("Source_Random"));
  setWindowTitle(QStringLiteral("Source of Random Terms"));
  auto* layout = new QVBoxLayout(this);
  source_ = radioGroup(this, layout, QStringLiteral("Source of Random Terms"),
                       {{opt::kReadIn, QStringLiteral("Read In")},
                        {opt::kGenerateInternally, QStringLiteral("Generate internally")}},
                       flags.randomSource);

  switches_ = new QButtonGroup(this);
  switches_->setExclusive(false);
  struct Switch {
    int id;
    const char* label;
    int* word;
  };
  const std::vector<Switch> initial{
      {456, "Uncertain Parameters", &switches.uncertainParameters},
      {457, "Certain But Different From Mean", &switches.certainButDifferent},
      {458, "Uncertain State Variables - if meas error", &switches.uncertainStates}};
  const std::vector<Switch> noise{
      {459, "System Equations", &switches.systemEquations},
      {460, "Measurement Equations", &switches.measurementEquations},
      {461, "Time-Varying Parameter Eq", &switches.timeVaryingParameters}};
  auto frame = [&](const char* caption, const std::vector<Switch>& list) {
    auto* box = new QGroupBox(QLatin1String(caption), this);
    auto* boxLayout = new QVBoxLayout(box);
    for (const Switch& s : list) {
      auto* check = new QCheckBox(QLatin1String(s.label), box);
      check->setChecked(*s.word != 0);
      switches_->addButton(check, s.id);
      boxLayout->addWidget(check);
      int* word = s.word;
      connect(check, &QCheckBox::toggled, this, [word](bool on) { *word = on ? 1 : 0; });
    }
    layout->addWidget(box);
  };
  frame("Random Initial Values", initial);
  frame("Noise Terms", noise);
  addOkCancel(this, layout);
}

// ---------------------------------------------------------------------------------------------

OptionsMcDialog::OptionsMcDialog(const std::vector<std::string>& periodAcronyms, int& stateStart,
                                 int& controlStart, QWidget* parent)
    : QDialog(parent), stateStart_(stateStart), controlStart_(controlStart) {
  setObjectName(QStringLiteral("OptionsMC"));
  setWindowTitle(QStringLiteral("Options: Monte Carlo"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      new QLabel(QStringLiteral("Starting Period for Calculation of Variance Over Time"), this));
  auto* grid = new QGridLayout;
  auto makeList = [&](int id, const char* caption, int chosen, int column) {
    auto* list = new QListWidget(this);
    list->setObjectName(QStringLiteral("list%1").arg(id));
    for (const std::string& a : periodAcronyms) list->addItem(qs(a));
    if (chosen >= 0 && chosen < list->count()) list->setCurrentRow(chosen);
    grid->addWidget(new QLabel(QLatin1String(caption), this), 0, column);
    grid->addWidget(list, 1, column);
    return list;
  };
  states_ = makeList(2400, "Starting Period for State Variables", stateStart, 0);
  controls_ = makeList(2402, "Starting Period for Control Variables", controlStart, 1);
  layout->addLayout(grid);
  addOkCancel(this, layout);
}

QListWidget* OptionsMcDialog::list(int id) const {
  return id == 2400 ? states_ : id == 2402 ? controls_ : nullptr;
}

void OptionsMcDialog::accept() {
  if (states_->currentRow() >= 0) stateStart_ = states_->currentRow();
  if (controls_->currentRow() >= 0) controlStart_ = controls_->currentRow();
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

DeleteElemDialog::DeleteElemDialog(int& index, int& confirmed, QWidget* parent)
    : QDialog(parent), index_(index), confirmed_(confirmed) {
  setObjectName(QStringLiteral("DeleteElem"));
  setWindowTitle(QStringLiteral("Delete Element"));
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout;
  edit_ = idField(this, 1072, {}, kCountChars);
  form->addRow(QStringLiteral("Number of the element to delete"), edit_);
  layout->addLayout(form);
  addOkCancel(this, layout);
}

void DeleteElemDialog::accept() {
  index_ = toInt(edit_->text().toStdString());
  confirmed_ = 1;
  QDialog::accept();
}

void DeleteElemDialog::reject() {
  confirmed_ = 0;
  QDialog::reject();
}

}  // namespace ovaro::ui
