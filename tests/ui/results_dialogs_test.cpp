#include "ui/results_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QPushButton>
#include <string>
#include <utility>
#include <vector>

#include "support/test_data.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

using test::click;
using IdLabels = std::vector<std::pair<int, std::string>>;

IdLabels buttonsOf(const QButtonGroup* group) {
  IdLabels out;
  for (QAbstractButton* b : group->buttons())
    out.emplace_back(group->id(b), b->text().toStdString());
  return out;
}

IdLabels expected(const std::string& section) {
  IdLabels out;
  for (const std::string& line : testing::dataSection("results_dialogs.txt", section))
    out.emplace_back(std::stoi(line), line.substr(line.find(' ') + 1));
  return out;
}

// Every display offered; the stored choice shown; a click writes at once and Cancel undoes
// nothing; with no choice yet nothing is checked and OK keeps the last click.
TEST(ResultsDisplayOptions, OffersEveryDisplayAndStoresAClickAtOnce) {
  test::qtApp();
  DisplayPreferences prefs;
  prefs.selector = 3320;
  prefs.desiredPaths = true;
  {
    DisplayOptionsDialog dialog(prefs);
    EXPECT_EQ(dialog.objectName(), "DISPLAYS");
    EXPECT_EQ(dialog.windowTitle(), "Display Options");
    EXPECT_EQ(buttonsOf(dialog.displays()), expected("displays"));
    EXPECT_TRUE(dialog.displays()->exclusive());
    EXPECT_EQ(dialog.displays()->checkedId(), 3320);
    EXPECT_EQ(dialog.desiredBox()->text(), "Desired States and Controls");
    EXPECT_TRUE(dialog.desiredBox()->isChecked());
    EXPECT_FALSE(dialog.parametersBox()->isChecked());
    click(dialog.displays(), 3340);
    EXPECT_EQ(prefs.selector, 3340);
    dialog.desiredBox()->click();
    EXPECT_FALSE(prefs.desiredPaths);
    dialog.parametersBox()->click();
    EXPECT_TRUE(prefs.parameters);
    dialog.cancelButton()->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
  }
  EXPECT_EQ(prefs, (DisplayPreferences{3340, false, true, true, false}));

  DisplayPreferences none;
  DisplayOptionsDialog dialog(none);
  EXPECT_EQ(dialog.displays()->checkedId(), -1);
  click(dialog.displays(), 3356);
  click(dialog.displays(), 3304);
  dialog.okButton()->click();
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(none, (DisplayPreferences{3304, false, false, true, false}));
}

// Opening shows the stored choices (a format that is not one shows the default 770, without
// storing it); format and boxes apply at once, the orientation only on OK.
TEST(ResultsPreferences, FormatAndBoxesApplyAtOnceOrientationWaitsForOk) {
  test::qtApp();
  DisplayPreferences prefs;
  for (const int stored : {0, 12345}) {
    int format = stored;
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 770);
    EXPECT_EQ(format, stored);
  }
  int format = 0;
  {
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.objectName(), "PrefResults");
    EXPECT_EQ(dialog.windowTitle(), "Preferences for Results");
    EXPECT_EQ(buttonsOf(dialog.formats()), expected("formats"));
    EXPECT_EQ(buttonsOf(dialog.orientation()), (IdLabels{{3450, "Rows"}, {3454, "Columns"}}));
    EXPECT_EQ(dialog.orientation()->checkedId(), 3450);
    EXPECT_EQ(dialog.desiredBox()->text(), "Desired Paths");
    EXPECT_EQ(dialog.parametersBox()->text(), "Parameters");
    EXPECT_FALSE(dialog.desiredBox()->isChecked());
    click(dialog.formats(), 778);
    click(dialog.formats(), 790);
    EXPECT_EQ(format, 790);
    dialog.desiredBox()->click();
    dialog.parametersBox()->click();
    click(dialog.orientation(), 3454);
    EXPECT_TRUE(prefs.periodsAsRows);  // not before OK
    dialog.cancelButton()->click();
  }
  // Cancel kept the format and the boxes, and dropped the orientation.
  EXPECT_EQ(format, 790);
  EXPECT_EQ(prefs, (DisplayPreferences{0, true, true, true, false}));
  {
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 790);
    EXPECT_TRUE(dialog.desiredBox()->isChecked() && dialog.parametersBox()->isChecked());
    click(dialog.orientation(), 3454);
    dialog.okButton()->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
  }
  EXPECT_EQ(prefs, (DisplayPreferences{0, true, true, false, true}));
  {
    // Back to rows through accept() itself, as a caller closing the dialog would.
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.orientation()->checkedId(), 3454);
    click(dialog.orientation(), 3450);
    dialog.accept();
  }
  EXPECT_EQ(prefs, (DisplayPreferences{0, true, true, true, false}));
}

}  // namespace
}  // namespace ovaro::ui
