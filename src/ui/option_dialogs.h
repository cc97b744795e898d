// The small modal dialogs of the workbench: the method choices of Compare and of the
// parameter-updating run, the two debug print option dialogs, the seed of the Monte Carlo
// generator, the caution experiment, the column count of imported matrices, and About.
//
// Each dialog edits one record that the caller owns and that must outlive the dialog. None of
// them needs exec(): a caller (or a test) may build one, click and type, and close it with OK or
// Cancel.
//
// When a record changes:
// - Check boxes and radio buttons write their option into the record the moment they are
//   clicked, and Cancel does not undo the click. This is the workbench's rule for every option
//   dialog: the Compare and updating commands run with whatever was ticked, whichever button
//   closed the dialog, and the debug print options follow the same rule as the specification
//   dialogs and the results preferences.
// - Typed fields are read, converted and stored on OK only; Cancel leaves the record as it was.
//   Texts convert like the rest of the workbench: leading blanks, then the longest decimal number
//   at the start of the text, and 0 when there is none ("3abc" is 3, "abc" is 0).
#pragma once

#include <array>
#include <string_view>

#include <QDialog>

#include "io/debug_options.h"
#include "solve/olf.h"
#include "stoch/random_terms.h"
#include "stoch/updating.h"

class QButtonGroup;
class QLineEdit;
class QTabWidget;

namespace ovaro::ui {

// The version shown in About; kept equal to the project version of the build.
inline constexpr std::string_view kOvaroVersion = "0.1.0";

// Control ids of the method dialogs, used as button ids in their groups.
namespace method_ids {
inline constexpr int kHcfr = 1618, kCe = 1620, kCeWo = 1622, kOlf = 1624, kOlin = 1626,
                     kVeldAdaptive = 1628;
inline constexpr int kWoHcfr = 1648, kWoCe = 1650, kWoOlf = 1652;
}  // namespace method_ids

// "METHOD": which of HCFR, CE, CEWO, OLF, OLIN the comparison runs (flags in the order of
// kCompareMethods). The box "VELD, Adaptive (not yet implemented)" is shown but disabled: no
// such method exists to run.
class MethodDialog : public QDialog {
  Q_OBJECT
 public:
  explicit MethodDialog(std::array<bool, 5>& compareFlags, QWidget* parent = nullptr);
  QButtonGroup* buttons() const { return buttons_; }

 private:
  std::array<bool, 5>& flags_;
  QButtonGroup* buttons_;
};

// "METHOD_WO": the methods of the Stochastic w/o Updating run.
class MethodWoDialog : public QDialog {
  Q_OBJECT
 public:
  explicit MethodWoDialog(UpdatingMethods& methods, QWidget* parent = nullptr);
  QButtonGroup* buttons() const { return buttons_; }

 private:
  UpdatingMethods& methods_;
  QButtonGroup* buttons_;
};

// "DebugPrintOptions": the single page of the QLP and OLF switches, one check box per switch of
// the switch table's QLP/OLF page, button id = the switch's enumeration value.
class DebugPrintOptionsDialog : public QDialog {
  Q_OBJECT
 public:
  explicit DebugPrintOptionsDialog(DebugSwitches& switches, QWidget* parent = nullptr);
  QButtonGroup* buttons() const { return buttons_; }

 private:
  QButtonGroup* buttons_;
};

// The five-page debug print options sheet of the traced OLF, Compare and updating runs: pages
// Summary, Inputs, Intermediates, Results and Monte Carlo built from the switch table (button
// id = the switch's enumeration value), and on the Summary page the run restriction (button id =
// the DebugRunSelection value) with the run number beside "Only run number y".
//
// The run number is a typed field, so it is read on OK: a text whose leading number is below 1
// (empty text and garbage read as 0) names no run and leaves the stored number unchanged.
class DebugPrintSheet : public QDialog {
  Q_OBJECT
 public:
  explicit DebugPrintSheet(DebugPrintSettings& settings, QWidget* parent = nullptr);
  QTabWidget* pages() const { return pages_; }
  QButtonGroup* switchButtons() const { return switches_; }
  QButtonGroup* runSelectionButtons() const { return runSelection_; }
  QLineEdit* runNumberEdit() const { return runNumber_; }

  void accept() override;

 private:
  DebugPrintSettings& settings_;
  QTabWidget* pages_;
  QButtonGroup* switches_;
  QButtonGroup* runSelection_;
  QLineEdit* runNumber_;
};

// "PrefSeed": the two seed texts (at most 8 characters each). OK passes both texts to
// applySeedTexts, so the next uniform draw starts from the typed Quarns seed; Cancel changes
// nothing. The field object names are "edit2254" (VX) and "edit2258" (Quarns).
class SeedDialog : public QDialog {
  Q_OBJECT
 public:
  explicit SeedDialog(RandomState& state, QWidget* parent = nullptr);
  QLineEdit* vxSeedEdit() const { return vx_; }
  QLineEdit* quarnsSeedEdit() const { return quarns_; }

  void accept() override;

 private:
  RandomState& state_;
  QLineEdit* vx_;
  QLineEdit* quarns_;
};

// "Caution_Exp": the indicator, the SITT0 element (row, column), the perturbed value and the
// period, each in a field of its own (object names "cautionOn", "cautionRow", "cautionColumn",
// "cautionValue", "cautionPeriod"). OK converts every field (non-numeric text as 0) and stores
// it; nothing is range-checked here, since the dialog does not know the model's sizes.
class CautionDialog : public QDialog {
  Q_OBJECT
 public:
  explicit CautionDialog(CautionExperiment& caution, QWidget* parent = nullptr);
  QLineEdit* onEdit() const { return on_; }
  QLineEdit* rowEdit() const { return row_; }
  QLineEdit* columnEdit() const { return column_; }
  QLineEdit* valueEdit() const { return value_; }
  QLineEdit* periodEdit() const { return period_; }

  void accept() override;

 private:
  CautionExperiment& caution_;
  QLineEdit* on_;
  QLineEdit* row_;
  QLineEdit* column_;
  QLineEdit* value_;
  QLineEdit* period_;
};

// "Import_Cols": the column count k of the blocks of an imported matrix file (object name of the
// field "editColumns"). OK stores k when it is at least 1; a matrix file cannot be laid out in
// blocks of no columns, so 0, negative or non-numeric text keeps the old count.
class ImportColumnsDialog : public QDialog {
  Q_OBJECT
 public:
  explicit ImportColumnsDialog(int& columns, QWidget* parent = nullptr);
  QLineEdit* columnsEdit() const { return edit_; }

  void accept() override;

 private:
  int& columns_;
  QLineEdit* edit_;
};

// "AboutBox": the program's name, version and purpose, and OK.
class AboutDialog : public QDialog {
  Q_OBJECT
 public:
  explicit AboutDialog(QWidget* parent = nullptr);
};

}  // namespace ovaro::ui
