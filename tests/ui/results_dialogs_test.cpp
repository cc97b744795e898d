#include "ui/results_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCheckBox>
#include <QPushButton>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "results/results_table.h"
#include "support/model_fixtures.h"
#include "support/solution_fixtures.h"
#include "support/test_data.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

using IdLabels = std::vector<std::pair<int, std::string>>;

IdLabels buttonsOf(const QButtonGroup* group) {
  IdLabels out;
  for (QAbstractButton* b : group->buttons()) {
    out.emplace_back(group->id(b), b->text().toStdString());
  }
  return out;
}

IdLabels expected(const std::string& section) {
  IdLabels out;
  for (const std::string& line : testing::dataSection("results_dialogs.txt", section))
    out.emplace_back(std::stoi(line), line.substr(line.find(' ') + 1));
  return out;
}

void click(QButtonGroup* group, int id) {
  QAbstractButton* b = group->button(id);
  ASSERT_NE(b, nullptr) << "no button " << id;
  b->click();
}

TEST(ResultsDisplayOptions, OffersEveryDisplayAndStoresAClickAtOnce) {
  test::qtApp();
  DisplayPreferences prefs;
  prefs.selector = 3320;
  prefs.desiredPaths = true;
  DisplayOptionsDialog dialog(prefs);
  EXPECT_EQ(dialog.objectName(), "DISPLAYS");
  EXPECT_EQ(dialog.windowTitle(), "Display Options");

  EXPECT_EQ(buttonsOf(dialog.displays()), expected("displays"));
  EXPECT_TRUE(dialog.displays()->exclusive());

  // Opening shows the stored choice and flags.
  EXPECT_EQ(dialog.displays()->checkedId(), 3320);
  EXPECT_EQ(dialog.desiredBox()->text(), "Desired States and Controls");
  EXPECT_EQ(dialog.parametersBox()->text(), "Parameters");
  EXPECT_TRUE(dialog.desiredBox()->isChecked());
  EXPECT_FALSE(dialog.parametersBox()->isChecked());

  // A click writes at once, before any button closes the dialog.
  click(dialog.displays(), 3340);
  EXPECT_EQ(prefs.selector, 3340);
  EXPECT_EQ(dialog.displays()->checkedId(), 3340);
  EXPECT_FALSE(dialog.displays()->button(3320)->isChecked());
  dialog.desiredBox()->click();
  EXPECT_FALSE(prefs.desiredPaths);
  dialog.parametersBox()->click();
  EXPECT_TRUE(prefs.parameters);
  dialog.parametersBox()->click();
  EXPECT_FALSE(prefs.parameters);
  dialog.parametersBox()->click();

  // Cancel closes and undoes nothing.
  dialog.cancelButton()->click();
  EXPECT_EQ(dialog.result(), QDialog::Rejected);
  EXPECT_EQ(prefs.selector, 3340);
  EXPECT_FALSE(prefs.desiredPaths);
  EXPECT_TRUE(prefs.parameters);
  EXPECT_TRUE(prefs.periodsAsRows);  // untouched by this dialog
}

TEST(ResultsDisplayOptions, OkKeepsTheChoiceAndNoChoiceChecksNothing) {
  test::qtApp();
  DisplayPreferences prefs;  // selector 0: nothing chosen yet
  DisplayOptionsDialog dialog(prefs);
  EXPECT_EQ(dialog.displays()->checkedId(), -1);
  EXPECT_EQ(prefs.selector, 0);  // opening writes nothing
  click(dialog.displays(), 3356);
  click(dialog.displays(), 3304);
  dialog.okButton()->click();
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(prefs.selector, 3304);
  EXPECT_FALSE(prefs.desiredPaths);
  EXPECT_FALSE(prefs.parameters);
}

TEST(ResultsPreferences, OpensWithTheStoredChoices) {
  test::qtApp();
  {
    DisplayPreferences prefs;
    int format = 0;  // no choice yet: the tables use 770
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.objectName(), "PrefResults");
    EXPECT_EQ(dialog.windowTitle(), "Preferences for Results");
    EXPECT_EQ(buttonsOf(dialog.formats()), expected("formats"));
    EXPECT_EQ(buttonsOf(dialog.orientation()), (IdLabels{{3450, "Rows"}, {3454, "Columns"}}));
    EXPECT_EQ(dialog.formats()->checkedId(), 770);
    EXPECT_EQ(format, 0);  // shown, not stored
    EXPECT_EQ(dialog.orientation()->checkedId(), 3450);
    EXPECT_EQ(dialog.desiredBox()->text(), "Desired Paths");
    EXPECT_EQ(dialog.parametersBox()->text(), "Parameters");
    EXPECT_FALSE(dialog.desiredBox()->isChecked());
    EXPECT_FALSE(dialog.parametersBox()->isChecked());
  }
  {
    DisplayPreferences prefs;
    prefs.periodsAsRows = false;
    prefs.periodsAsColumns = true;
    prefs.desiredPaths = true;
    prefs.parameters = true;
    int format = 786;
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 786);
    EXPECT_EQ(dialog.orientation()->checkedId(), 3454);
    EXPECT_TRUE(dialog.desiredBox()->isChecked());
    EXPECT_TRUE(dialog.parametersBox()->isChecked());
  }
  {
    DisplayPreferences prefs;
    int format = 12345;  // not a format: the tables use 770, and so does the dialog
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 770);
  }
}

TEST(ResultsPreferences, FormatAndBoxesApplyAtOnceOrientationWaitsForOk) {
  test::qtApp();
  DisplayPreferences prefs;
  int format = 0;
  {
    ResultsPreferencesDialog dialog(prefs, format);
    click(dialog.formats(), 778);
    EXPECT_EQ(format, 778);
    click(dialog.formats(), 795);
    EXPECT_EQ(format, 795);
    EXPECT_FALSE(dialog.formats()->button(778)->isChecked());
    dialog.desiredBox()->click();
    EXPECT_TRUE(prefs.desiredPaths);
    dialog.parametersBox()->click();
    EXPECT_TRUE(prefs.parameters);
    click(dialog.orientation(), 3454);
    EXPECT_TRUE(prefs.periodsAsRows);  // not before OK
    EXPECT_FALSE(prefs.periodsAsColumns);
    dialog.cancelButton()->click();
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
  }
  // Cancel kept the format and the boxes, and dropped the orientation.
  EXPECT_EQ(format, 795);
  EXPECT_TRUE(prefs.desiredPaths);
  EXPECT_TRUE(prefs.parameters);
  EXPECT_TRUE(prefs.periodsAsRows);
  EXPECT_FALSE(prefs.periodsAsColumns);

  {
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.orientation()->checkedId(), 3450);
    click(dialog.orientation(), 3454);
    dialog.okButton()->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
  }
  EXPECT_FALSE(prefs.periodsAsRows);
  EXPECT_TRUE(prefs.periodsAsColumns);

  {
    // Back to rows through accept() itself, as a caller closing the dialog would.
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.orientation()->checkedId(), 3454);
    click(dialog.orientation(), 3450);
    dialog.desiredBox()->click();
    dialog.accept();
  }
  EXPECT_TRUE(prefs.periodsAsRows);
  EXPECT_FALSE(prefs.periodsAsColumns);
  EXPECT_FALSE(prefs.desiredPaths);
  EXPECT_EQ(format, 795);
}

TEST(ResultsPreferences, Format790ChosenBeforeCancelReachesTheNextTable) {
  test::qtApp();
  testing::ModelShape shape;
  shape.n = 1;
  shape.m = 1;
  shape.initialPeriod = 1;
  shape.terminalPeriod = 3;  // periods 0..2
  const Model model = testing::makeModel(shape);
  ResultsStore store;
  StoredResult r;
  r.solution = testing::zeroSolution("QLP", 1, 1, 2);
  Solution& s = r.solution;
  s.xs(1, 0) = 100.25;
  s.criterion = -0.5;
  store.store(std::move(r));
  store.display.selector = 3300;
  int format = 0;

  ResultsPreferencesDialog dialog(store.display, format);
  click(dialog.formats(), 790);
  dialog.reject();
  EXPECT_EQ(format, 790);

  const std::optional<ResultsTable> table = layoutResultsTable(model, store, format);
  ASSERT_TRUE(table);
  EXPECT_EQ(table->columnWidth, 17);
  bool found = false;
  for (const TableCell& c : table->values) {
    if (c.line == 0 && c.column == 0) {
      EXPECT_EQ(c.text, " 1.002500E+02 ");
      found = true;
    }
  }
  EXPECT_TRUE(found);
  ASSERT_EQ(table->criteria.size(), 1u);
  EXPECT_EQ(table->criteria[0].value, " -5.000000E-01 ");
}

}  // namespace
}  // namespace ovaro::ui
