#include "ui/results_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include "io/number_format.h"
#include "results/display_selection.h"

namespace ovaro::ui {

namespace {

QString qtText(std::string_view s) {
  return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

QCheckBox* checkBox(QWidget* parent, const char* text, int id, bool checked) {
  auto* box = new QCheckBox(QString::fromLatin1(text), parent);
  box->setObjectName(QStringLiteral("check%1").arg(id));
  box->setChecked(checked);
  return box;
}

QRadioButton* radio(QGroupBox* parent, QButtonGroup* group, const QString& text, int id) {
  auto* button = new QRadioButton(text, parent);
  button->setObjectName(QStringLiteral("radio%1").arg(id));
  group->addButton(button, id);
  return button;
}

// OK and Cancel, wired to the dialog's accept and reject.
QDialogButtonBox* okCancel(QDialog* dialog) {
  auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, dialog);
  QObject::connect(box, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
  QObject::connect(box, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
  return box;
}

}  // namespace

DisplayOptionsDialog::DisplayOptionsDialog(DisplayPreferences& prefs, QWidget* parent)
    : QDialog(parent), prefs_(prefs), displays_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("DISPLAYS"));
  setWindowTitle(tr("Display Options"));

  // Single solutions on the left, the combinations of Monte Carlo methods on the right, each
  // column in the table's order.
  auto* group = new QGroupBox(tr("Display"), this);
  auto* grid = new QGridLayout(group);
  int singles = 0;
  int combinations = 0;
  for (const DisplayEntry& d : displayTable()) {
    QRadioButton* button = radio(group, displays_, qtText(d.dialogLabel), d.id);
    if (d.k == 1) {
      grid->addWidget(button, singles++, 0);
    } else {
      grid->addWidget(button, combinations++, 1);
    }
  }
  if (QAbstractButton* current = displays_->button(prefs_.selector)) current->setChecked(true);

  desired_ = checkBox(this, "Desired States and Controls", results_ids::kDesiredStatesAndControls,
                      prefs_.desiredPaths);
  parameters_ = checkBox(this, "Parameters", results_ids::kDisplayParameters, prefs_.parameters);

  QDialogButtonBox* buttons = okCancel(this);
  ok_ = buttons->button(QDialogButtonBox::Ok);
  cancel_ = buttons->button(QDialogButtonBox::Cancel);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(group);
  layout->addWidget(desired_);
  layout->addWidget(parameters_);
  layout->addWidget(buttons);

  connect(displays_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    if (checked) prefs_.selector = id;
  });
  connect(desired_, &QCheckBox::toggled, this, [this](bool on) { prefs_.desiredPaths = on; });
  connect(parameters_, &QCheckBox::toggled, this, [this](bool on) { prefs_.parameters = on; });
}

ResultsPreferencesDialog::ResultsPreferencesDialog(DisplayPreferences& prefs, int& formatId,
                                                   QWidget* parent)
    : QDialog(parent),
      prefs_(prefs),
      formatId_(formatId),
      orientation_(new QButtonGroup(this)),
      formats_(new QButtonGroup(this)) {
  setObjectName(QStringLiteral("PrefResults"));
  setWindowTitle(tr("Preferences for Results"));

  auto* periods = new QGroupBox(tr("Time periods as ..."), this);
  auto* periodsLayout = new QVBoxLayout(periods);
  periodsLayout->addWidget(radio(periods, orientation_, tr("Rows"), results_ids::kPeriodsAsRows));
  periodsLayout->addWidget(
      radio(periods, orientation_, tr("Columns"), results_ids::kPeriodsAsColumns));
  // Exactly one orientation flag is set; the tables go by the columns flag, and so does this.
  orientation_
      ->button(prefs_.periodsAsColumns ? results_ids::kPeriodsAsColumns
                                       : results_ids::kPeriodsAsRows)
      ->setChecked(true);

  desired_ = checkBox(this, "Desired Paths", results_ids::kDesiredPaths, prefs_.desiredPaths);
  parameters_ = checkBox(this, "Parameters", results_ids::kPreferenceParameters, prefs_.parameters);

  auto* numbers = new QGroupBox(tr("Number Format"), this);
  auto* numbersLayout = new QVBoxLayout(numbers);
  for (const NumberFormat& f : numberFormats()) {
    numbersLayout->addWidget(radio(numbers, formats_, qtText(f.label), f.id));
  }
  // 0 (no choice yet) and an id that is not a format show the format the tables use: 770.
  formats_->button(resultsNumberFormat(formatId_).id)->setChecked(true);

  QDialogButtonBox* buttons = okCancel(this);
  ok_ = buttons->button(QDialogButtonBox::Ok);
  cancel_ = buttons->button(QDialogButtonBox::Cancel);

  auto* left = new QVBoxLayout;
  left->addWidget(periods);
  left->addWidget(desired_);
  left->addWidget(parameters_);
  left->addStretch();
  auto* columns = new QHBoxLayout;
  columns->addLayout(left);
  columns->addWidget(numbers);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(columns);
  layout->addWidget(buttons);

  connect(formats_, &QButtonGroup::idToggled, this, [this](int id, bool checked) {
    if (checked) formatId_ = id;
  });
  connect(desired_, &QCheckBox::toggled, this, [this](bool on) { prefs_.desiredPaths = on; });
  connect(parameters_, &QCheckBox::toggled, this, [this](bool on) { prefs_.parameters = on; });
}

void ResultsPreferencesDialog::accept() {
  const bool rows = orientation_->checkedId() == results_ids::kPeriodsAsRows;
  prefs_.periodsAsRows = rows;
  prefs_.periodsAsColumns = !rows;
  QDialog::accept();
}

}  // namespace ovaro::ui
