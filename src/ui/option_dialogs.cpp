#include "ui/option_dialogs.h"

#include <map>
#include <string>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

#include "model/conversion.h"
#include "results/results_store.h"

namespace ovaro::ui {

namespace {

QString qs(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string text(const QLineEdit* edit) {
  return edit->text().toStdString();
}

// OK and Cancel under the dialog's body (OK alone for About).
void addButtons(QDialog* dialog, QBoxLayout* layout, bool withCancel = true) {
  auto* box = new QDialogButtonBox(
      withCancel ? QDialogButtonBox::Ok | QDialogButtonBox::Cancel : QDialogButtonBox::Ok, dialog);
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  layout->addWidget(box);
}

QLineEdit* lineEdit(QWidget* parent, const char* objectName, const QString& value) {
  auto* edit = new QLineEdit(value, parent);
  edit->setObjectName(QLatin1String(objectName));
  return edit;
}

// Check boxes for every switch of one page, in table order. Boxes with a group caption go into a
// group box made where the caption first occurs; boxes without one sit directly on the page.
void addSwitchBoxes(DebugPage page, QWidget* owner, QBoxLayout* into, QButtonGroup* group,
                    const DebugSwitches& switches) {
  std::map<std::string_view, QVBoxLayout*> groupBoxes;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page != page) continue;
    auto* box = new QCheckBox(qs(info.label), owner);
    box->setChecked(switches.isSet(info.id));
    group->addButton(box, static_cast<int>(info.id));
    if (info.group.empty()) {
      into->addWidget(box);
      continue;
    }
    auto found = groupBoxes.find(info.group);
    if (found == groupBoxes.end()) {
      auto* frame = new QGroupBox(qs(info.group), owner);
      auto* frameLayout = new QVBoxLayout(frame);
      into->addWidget(frame);
      found = groupBoxes.emplace(info.group, frameLayout).first;
    }
    found->second->addWidget(box);
  }
}

// A non-exclusive group whose boxes write their switch the moment they are toggled.
QButtonGroup* switchGroup(QObject* owner) {
  auto* group = new QButtonGroup(owner);
  group->setObjectName(QStringLiteral("switches"));
  group->setExclusive(false);
  return group;
}

void writeSwitchesAtOnce(QObject* owner, QButtonGroup* group, DebugSwitches& switches) {
  QObject::connect(group, &QButtonGroup::idToggled, owner, [&switches](int id, bool checked) {
    switches.set(static_cast<DebugSwitch>(id), checked);
  });
}

}  // namespace

// ---------------------------------------------------------------------------------------------

MethodDialog::MethodDialog(std::array<bool, 5>& compareFlags, QWidget* parent)
    : QDialog(parent), flags_(compareFlags), buttons_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("METHOD"));
  setWindowTitle(QStringLiteral("Method"));
  buttons_->setObjectName(QStringLiteral("methods"));
  buttons_->setExclusive(false);

  // In the order of the run flags: HCFR, CE, CEWO, OLF, OLIN.
  static constexpr std::array<int, 5> kIds{method_ids::kHcfr, method_ids::kCe, method_ids::kCeWo,
                                           method_ids::kOlf, method_ids::kOlin};
  auto* layout = new QVBoxLayout(this);
  for (std::size_t i = 0; i < kIds.size(); ++i) {
    auto* box = new QCheckBox(qs(kCompareMethods[i]), this);
    box->setChecked(flags_[i]);
    buttons_->addButton(box, kIds[i]);
    layout->addWidget(box);
  }
  // There is no adaptive method to run; the box is shown so the user sees it is planned.
  auto* veld = new QCheckBox(QStringLiteral("VELD, Adaptive (not yet implemented)"), this);
  veld->setEnabled(false);
  buttons_->addButton(veld, method_ids::kVeldAdaptive);
  layout->addWidget(veld);
  addButtons(this, layout);

  connect(buttons_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    for (std::size_t i = 0; i < kIds.size(); ++i) {
      if (kIds[i] == id) flags_[i] = checked;
    }
  });
}

MethodWoDialog::MethodWoDialog(UpdatingMethods& methods, QWidget* parent)
    : QDialog(parent), methods_(methods), buttons_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("METHOD_WO"));
  setWindowTitle(QStringLiteral("Methods for Stochastic w/o Updating"));
  buttons_->setObjectName(QStringLiteral("methods"));
  buttons_->setExclusive(false);

  auto* layout = new QVBoxLayout(this);
  auto add = [&](const QString& label, int id, bool value) {
    auto* box = new QCheckBox(label, this);
    box->setChecked(value);
    buttons_->addButton(box, id);
    layout->addWidget(box);
  };
  add(QStringLiteral("HCFR"), method_ids::kWoHcfr, methods_.hcfr);
  // The label's spelling is the one users of the workbench know; it is kept.
  add(QStringLiteral("Certaintly Equivalence, CE"), method_ids::kWoCe, methods_.ce);
  add(QStringLiteral("OLF"), method_ids::kWoOlf, methods_.olf);
  addButtons(this, layout);

  connect(buttons_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    if (id == method_ids::kWoHcfr) methods_.hcfr = checked;
    if (id == method_ids::kWoCe) methods_.ce = checked;
    if (id == method_ids::kWoOlf) methods_.olf = checked;
  });
}

// ---------------------------------------------------------------------------------------------

DebugPrintOptionsDialog::DebugPrintOptionsDialog(DebugSwitches& switches, QWidget* parent)
    : QDialog(parent), buttons_(switchGroup(this)) {
  setObjectName(QStringLiteral("DebugPrintOptions"));
  setWindowTitle(qs(debugPageTitle(DebugPage::QlpOlf)));
  auto* layout = new QVBoxLayout(this);
  addSwitchBoxes(DebugPage::QlpOlf, this, layout, buttons_, switches);
  addButtons(this, layout);
  writeSwitchesAtOnce(this, buttons_, switches);
}

DebugPrintSheet::DebugPrintSheet(DebugPrintSettings& settings, QWidget* parent)
    : QDialog(parent),
      settings_(settings),
      pages_(new QTabWidget(this)),
      switches_(switchGroup(this)),
      runSelection_(new QButtonGroup(this)),
      runNumber_(nullptr) {
  setObjectName(QStringLiteral("DebugPrintSheet"));
  setWindowTitle(qs(debugPageTitle(DebugPage::QlpOlf)));
  runSelection_->setObjectName(QStringLiteral("runSelection"));
  // All five tabs in sight: the sheet widens rather than hiding a page behind scroll arrows.
  pages_->setUsesScrollButtons(false);

  static constexpr std::array<DebugPage, 5> kPages{DebugPage::Summary, DebugPage::Inputs,
                                                   DebugPage::Intermediates, DebugPage::Results,
                                                   DebugPage::MonteCarlo};
  for (DebugPage page : kPages) {
    auto* widget = new QWidget(pages_);
    auto* pageLayout = new QVBoxLayout(widget);
    addSwitchBoxes(page, widget, pageLayout, switches_, settings_.switches);

    if (page == DebugPage::Summary) {
      auto* frame = new QGroupBox(qs(kRunSelectionCaption), widget);
      auto* grid = new QGridLayout(frame);
      auto* first = new QRadioButton(qs(kFirstRunLabel), frame);
      auto* numbered = new QRadioButton(qs(kRunNumberLabel), frame);
      runSelection_->addButton(first, static_cast<int>(DebugRunSelection::FirstRun));
      runSelection_->addButton(numbered, static_cast<int>(DebugRunSelection::RunNumber));
      runNumber_ = lineEdit(frame, "editRunNumber", QString::number(settings_.runNumber));
      grid->addWidget(first, 0, 0);
      grid->addWidget(numbered, 1, 0);
      grid->addWidget(runNumber_, 1, 1);
      runSelection_->button(static_cast<int>(settings_.runSelection))->setChecked(true);
      pageLayout->addWidget(frame);
    }
    pageLayout->addStretch();
    pages_->addTab(widget, qs(debugPageTitle(page)));
  }

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages_);
  addButtons(this, layout);

  writeSwitchesAtOnce(this, switches_, settings_.switches);
  connect(runSelection_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    if (checked) settings_.runSelection = static_cast<DebugRunSelection>(id);
  });
}

void DebugPrintSheet::accept() {
  // Runs count from 1; a lower number would select no run at all.
  const int run = toInt(text(runNumber_));
  if (run >= 1) settings_.runNumber = run;
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

SeedDialog::SeedDialog(RandomState& state, QWidget* parent)
    : QDialog(parent), state_(state), vx_(nullptr), quarns_(nullptr) {
  setObjectName(QStringLiteral("PrefSeed"));
  setWindowTitle(QStringLiteral("Seed for Monte Carlo Generator"));

  constexpr int kSeedChars = 8;
  vx_ = lineEdit(this, "edit2254", QString::fromStdString(state_.vxSeedText));
  quarns_ = lineEdit(this, "edit2258", QString::fromStdString(state_.quarnsSeedText));
  vx_->setMaxLength(kSeedChars);
  quarns_->setMaxLength(kSeedChars);

  auto* layout = new QVBoxLayout(this);
  auto* grid = new QGridLayout;
  grid->addWidget(new QLabel(QStringLiteral("Integer Seed for VX Method"), this), 0, 0);
  grid->addWidget(vx_, 0, 1);
  grid->addWidget(new QLabel(QStringLiteral("Not Currently in Use"), this), 0, 2);
  grid->addWidget(new QLabel(QStringLiteral("Floating Point Seed for Quarns' Method"), this), 1, 0);
  grid->addWidget(quarns_, 1, 1);
  grid->addWidget(new QLabel(QStringLiteral("Now in Use"), this), 1, 2);
  layout->addLayout(grid);
  addButtons(this, layout);

  // The Quarns seed is the one in use, so it is the one a user comes to change.
  quarns_->setFocus();
}

void SeedDialog::accept() {
  applySeedTexts(state_, text(vx_), text(quarns_));
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

CautionDialog::CautionDialog(CautionExperiment& caution, QWidget* parent)
    : QDialog(parent), caution_(caution) {
  setObjectName(QStringLiteral("Caution_Exp"));
  setWindowTitle(QStringLiteral("Caution Experiment"));

  on_ = lineEdit(this, "cautionOn", QString::number(caution_.on));
  row_ = lineEdit(this, "cautionRow", QString::number(caution_.row));
  column_ = lineEdit(this, "cautionColumn", QString::number(caution_.column));
  // Shortest text that reads back as the same double, so OK without an edit changes nothing.
  value_ = lineEdit(this, "cautionValue",
                    QString::number(caution_.value, 'g', QLocale::FloatingPointShortest));
  period_ = lineEdit(this, "cautionPeriod", QString::number(caution_.period));

  auto* layout = new QVBoxLayout(this);
  auto* top = new QGridLayout;
  top->addWidget(new QLabel(QStringLiteral("Indicator to Turn On Experiment"), this), 0, 0);
  top->addWidget(on_, 0, 1);
  top->addWidget(new QLabel(QStringLiteral("One for On and Zero for Off"), this), 0, 2);
  layout->addLayout(top);

  auto* element = new QGroupBox(QStringLiteral("Element in SITT0 to Perturb"), this);
  auto* elementGrid = new QGridLayout(element);
  elementGrid->addWidget(new QLabel(QStringLiteral("Row"), element), 0, 0);
  elementGrid->addWidget(row_, 0, 1);
  elementGrid->addWidget(new QLabel(QStringLiteral("Column"), element), 1, 0);
  elementGrid->addWidget(column_, 1, 1);
  layout->addWidget(element);

  auto* rest = new QGridLayout;
  rest->addWidget(new QLabel(QStringLiteral("Perturbed Value"), this), 0, 0);
  rest->addWidget(value_, 0, 1);
  rest->addWidget(new QLabel(QStringLiteral("Time Period - (integer rather than acronym)"), this),
                  1, 0);
  rest->addWidget(period_, 1, 1);
  layout->addLayout(rest);
  addButtons(this, layout);
}

void CautionDialog::accept() {
  caution_.on = toInt(text(on_));
  caution_.row = toInt(text(row_));
  caution_.column = toInt(text(column_));
  caution_.value = toDouble(text(value_));
  caution_.period = toInt(text(period_));
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

ImportColumnsDialog::ImportColumnsDialog(int& columns, QWidget* parent)
    : QDialog(parent), columns_(columns) {
  setObjectName(QStringLiteral("Import_Cols"));
  setWindowTitle(QStringLiteral("Columns in Imported Matrix"));
  edit_ = lineEdit(this, "editColumns", QString::number(columns_));

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(
      new QLabel(QStringLiteral("Enter the number of columns in the imported matrix."), this));
  layout->addWidget(edit_);
  addButtons(this, layout);
}

void ImportColumnsDialog::accept() {
  const int k = toInt(text(edit_));
  if (k >= 1) columns_ = k;
  QDialog::accept();
}

// ---------------------------------------------------------------------------------------------

AboutDialog::AboutDialog(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("AboutBox"));
  setWindowTitle(QStringLiteral("About Ovaro"));
  auto* layout = new QVBoxLayout(this);
  auto* name = new QLabel(QStringLiteral("Ovaro"), this);
  name->setObjectName(QStringLiteral("programName"));
  auto* version = new QLabel(QStringLiteral("Version ") + qs(kOvaroVersion), this);
  version->setObjectName(QStringLiteral("programVersion"));
  auto* purpose = new QLabel(
      QStringLiteral("A workbench for quadratic-linear optimal control of small economic models, "
                     "deterministic and stochastic."),
      this);
  purpose->setObjectName(QStringLiteral("programPurpose"));
  purpose->setWordWrap(true);
  layout->addWidget(name);
  layout->addWidget(version);
  layout->addWidget(purpose);
  addButtons(this, layout, false);
}

}  // namespace ovaro::ui
