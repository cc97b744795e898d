// The two dialogs that choose how results are shown: Display Options ("DISPLAYS"), which picks
// the solution or combination of methods to show, and Preferences for Results ("PrefResults"),
// which picks the number format, the orientation of the table and the optional blocks.
//
// Both edit records that the caller owns and that must outlive the dialog, and neither needs
// exec(): a caller (or a test) may build one, click, and close it with OK or Cancel. The shell
// shows the results again after either button.
//
// When a record changes: radio buttons and check boxes write their option the moment they are
// clicked and Cancel does not undo the click, the workbench's rule for option dialogs. So a
// format chosen before Cancel still applies to the next table. The one exception is the
// orientation of the table ("Time periods as ... Rows / Columns"), which is taken on OK only.
#pragma once

#include <QDialog>

#include "results/results_store.h"

class QButtonGroup;
class QCheckBox;
class QPushButton;

namespace ovaro::ui {

// Control ids of the two dialogs (the display ids 3300..3364 and the format ids 770..795 are the
// radio buttons' ids as well; their tables are in results/display_selection.h and
// io/number_format.h).
namespace results_ids {
inline constexpr int kDesiredStatesAndControls = 3400, kDisplayParameters = 3404;
inline constexpr int kPeriodsAsRows = 3450, kPeriodsAsColumns = 3454;
inline constexpr int kDesiredPaths = 3460, kPreferenceParameters = 3464;
}  // namespace results_ids

// "DISPLAYS": one radio button per display of the display table, with the display id as its
// button id, and the boxes "Desired States and Controls" and "Parameters".
class DisplayOptionsDialog : public QDialog {
  Q_OBJECT
 public:
  explicit DisplayOptionsDialog(DisplayPreferences& prefs, QWidget* parent = nullptr);

  QButtonGroup* displays() const { return displays_; }
  QCheckBox* desiredBox() const { return desired_; }
  QCheckBox* parametersBox() const { return parameters_; }
  QPushButton* okButton() const { return ok_; }
  QPushButton* cancelButton() const { return cancel_; }

 private:
  DisplayPreferences& prefs_;
  QButtonGroup* displays_;
  QCheckBox* desired_;
  QCheckBox* parameters_;
  QPushButton* ok_;
  QPushButton* cancel_;
};

// "PrefResults": the orientation (3450 Rows, 3454 Columns), the boxes "Desired Paths" and
// "Parameters", and the nine number formats (770..795). `formatId` is the workbench's stored
// choice, 0 until one is made (the tables then use 770, which the dialog shows checked).
class ResultsPreferencesDialog : public QDialog {
  Q_OBJECT
 public:
  ResultsPreferencesDialog(DisplayPreferences& prefs, int& formatId, QWidget* parent = nullptr);

  QButtonGroup* orientation() const { return orientation_; }
  QButtonGroup* formats() const { return formats_; }
  QCheckBox* desiredBox() const { return desired_; }
  QCheckBox* parametersBox() const { return parameters_; }
  QPushButton* okButton() const { return ok_; }
  QPushButton* cancelButton() const { return cancel_; }

  // OK: the chosen orientation becomes the table's, then the dialog closes.
  void accept() override;

 private:
  DisplayPreferences& prefs_;
  int& formatId_;
  QButtonGroup* orientation_;
  QButtonGroup* formats_;
  QCheckBox* desired_;
  QCheckBox* parameters_;
  QPushButton* ok_;
  QPushButton* cancel_;
};

}  // namespace ovaro::ui
