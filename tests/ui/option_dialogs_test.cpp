#include "ui/option_dialogs.h"

#include <cmath>
#include <cstdint>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <tuple>

#include <array>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

void pressOk(QDialog& dialog) {
  auto* box = dialog.findChild<QDialogButtonBox*>();
  ASSERT_NE(box, nullptr);
  ASSERT_NE(box->button(QDialogButtonBox::Ok), nullptr);
  box->button(QDialogButtonBox::Ok)->click();
}

void pressCancel(QDialog& dialog) {
  auto* box = dialog.findChild<QDialogButtonBox*>();
  ASSERT_NE(box, nullptr);
  ASSERT_NE(box->button(QDialogButtonBox::Cancel), nullptr);
  box->button(QDialogButtonBox::Cancel)->click();
}

// Replaces the field's text by typing, as a user would (so the length limit applies).
void type(QLineEdit* edit, const QString& text) {
  ASSERT_NE(edit, nullptr);
  edit->clear();
  QTest::keyClicks(edit, text);
}

bool hasLabel(const QDialog& dialog, const QString& text) {
  for (const QLabel* label : dialog.findChildren<QLabel*>()) {
    if (label->text() == text) return true;
  }
  return false;
}

// The Quarns step written out from its definition, independently of the generator's code:
// k = trunc(s x 566927), r = (k x 3612 + 5701) mod 566927, u = (r + 0.5) / 566927.
double quarnsByHand(float s) {
  const auto k = static_cast<std::int64_t>(static_cast<double>(s) * 566927.0);
  const std::int64_t r = (k * 3612 + 5701) % 566927;
  return (static_cast<double>(r) + 0.5) / 566927.0;
}

TEST(MethodDialog, ShowsFlagsWritesEachClickAtOnceAndCancelKeepsIt) {
  test::qtApp();
  std::array<bool, 5> flags{true, false, false, true, false};
  MethodDialog dialog(flags);
  EXPECT_EQ(dialog.objectName(), "METHOD");
  EXPECT_EQ(dialog.windowTitle(), "Method");

  const std::array<int, 5> ids{1618, 1620, 1622, 1624, 1626};
  const std::array<const char*, 5> labels{"HCFR", "CE", "CEWO", "OLF", "OLIN"};
  for (std::size_t i = 0; i < ids.size(); ++i) {
    QAbstractButton* box = dialog.buttons()->button(ids[i]);
    ASSERT_NE(box, nullptr) << ids[i];
    EXPECT_EQ(box->text(), labels[i]);
    EXPECT_EQ(box->isChecked(), flags[i]) << labels[i];
  }
  QAbstractButton* veld = dialog.buttons()->button(1628);
  ASSERT_NE(veld, nullptr);
  EXPECT_EQ(veld->text(), "VELD, Adaptive (not yet implemented)");
  EXPECT_FALSE(veld->isEnabled());

  // Each box flips exactly its own flag, before any button closes the dialog.
  for (std::size_t i = 0; i < ids.size(); ++i) {
    const std::array<bool, 5> before = flags;
    dialog.buttons()->button(ids[i])->click();
    for (std::size_t j = 0; j < flags.size(); ++j) {
      EXPECT_EQ(flags[j], j == i ? !before[j] : before[j]) << "clicked " << labels[i];
    }
  }
  EXPECT_EQ(flags, (std::array<bool, 5>{false, true, true, false, true}));

  veld->click();  // disabled: nothing changes
  EXPECT_EQ(flags, (std::array<bool, 5>{false, true, true, false, true}));

  pressCancel(dialog);
  EXPECT_EQ(dialog.result(), QDialog::Rejected);
  EXPECT_EQ(flags, (std::array<bool, 5>{false, true, true, false, true}));
}

TEST(MethodDialog, WithoutUpdatingWritesAtOnceAndCancelKeepsIt) {
  test::qtApp();
  UpdatingMethods methods;
  methods.ce = true;
  MethodWoDialog dialog(methods);
  EXPECT_EQ(dialog.objectName(), "METHOD_WO");
  EXPECT_EQ(dialog.windowTitle(), "Methods for Stochastic w/o Updating");
  ASSERT_NE(dialog.buttons()->button(1648), nullptr);
  ASSERT_NE(dialog.buttons()->button(1650), nullptr);
  ASSERT_NE(dialog.buttons()->button(1652), nullptr);
  EXPECT_EQ(dialog.buttons()->button(1648)->text(), "HCFR");
  EXPECT_EQ(dialog.buttons()->button(1650)->text(), "Certaintly Equivalence, CE");
  EXPECT_EQ(dialog.buttons()->button(1652)->text(), "OLF");
  EXPECT_FALSE(dialog.buttons()->button(1648)->isChecked());
  EXPECT_TRUE(dialog.buttons()->button(1650)->isChecked());
  EXPECT_FALSE(dialog.buttons()->button(1652)->isChecked());

  dialog.buttons()->button(1648)->click();
  EXPECT_TRUE(methods.hcfr);
  EXPECT_TRUE(methods.ce);
  EXPECT_FALSE(methods.olf);
  dialog.buttons()->button(1650)->click();
  EXPECT_FALSE(methods.ce);
  dialog.buttons()->button(1652)->click();
  EXPECT_TRUE(methods.olf);
  EXPECT_TRUE(methods.hcfr);

  pressCancel(dialog);
  EXPECT_TRUE(methods.hcfr);
  EXPECT_FALSE(methods.ce);
  EXPECT_TRUE(methods.olf);
}

// The group box a check box sits in, or empty when it sits directly on its page.
QString groupOf(const QAbstractButton* box) {
  for (const QObject* p = box->parent(); p != nullptr; p = p->parent()) {
    if (const auto* frame = qobject_cast<const QGroupBox*>(p)) return frame->title();
  }
  return {};
}

TEST(DebugPrintOptionsDialog, HoldsEveryQlpSwitchOnceInItsGroupAndEachBoxSetsOnlyItsSwitch) {
  test::qtApp();
  DebugSwitches switches;
  switches.set(DebugSwitch::QlpKAndP);
  DebugPrintOptionsDialog dialog(switches);
  EXPECT_EQ(dialog.objectName(), "DebugPrintOptions");
  EXPECT_EQ(dialog.windowTitle(), "Debug Print Options");

  int expected = 0;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    QAbstractButton* box = dialog.buttons()->button(static_cast<int>(info.id));
    if (info.page != DebugPage::QlpOlf) {
      EXPECT_EQ(box, nullptr) << info.name;
      continue;
    }
    ++expected;
    ASSERT_NE(box, nullptr) << info.name;
    EXPECT_EQ(box->text().toStdString(), info.label);
    EXPECT_EQ(groupOf(box).toStdString(), info.group) << info.name;
    EXPECT_EQ(box->isChecked(), info.id == DebugSwitch::QlpKAndP) << info.name;
  }
  EXPECT_EQ(expected, 12);
  EXPECT_EQ(dialog.buttons()->buttons().size(), expected);
  // Every group caption of the page, and no other.
  QStringList titles;
  for (const QGroupBox* frame : dialog.findChildren<QGroupBox*>()) titles << frame->title();
  EXPECT_EQ(titles, (QStringList{"Inputs", "Input Transformations", "Riccati Equations",
                                 "Feedback Rule", "Criterion Value"}));

  // Untick the preset box, then each box on its own: the record holds exactly that switch.
  dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpKAndP))->click();
  EXPECT_FALSE(switches.any());
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page != DebugPage::QlpOlf) continue;
    QAbstractButton* box = dialog.buttons()->button(static_cast<int>(info.id));
    box->click();
    DebugSwitches only;
    only.set(info.id);
    EXPECT_EQ(switches, only) << info.name;
    box->click();
    EXPECT_FALSE(switches.any()) << info.name;
  }

  // "All" covers the page without ticking the other boxes.
  dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpAll))->click();
  EXPECT_TRUE(switches.on(DebugSwitch::QlpGAndG));
  EXPECT_FALSE(dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpGAndG))->isChecked());

  dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpCriterionValue))->click();
  pressCancel(dialog);
  DebugSwitches kept;
  kept.set(DebugSwitch::QlpAll);
  kept.set(DebugSwitch::QlpCriterionValue);
  EXPECT_EQ(switches, kept);
}

TEST(DebugPrintSheet, FivePagesHoldEverySheetSwitchOnceOnItsPageAndEachBoxSetsOnlyItsSwitch) {
  test::qtApp();
  DebugPrintSettings settings;
  settings.switches.set(DebugSwitch::FilterMeansFinal);
  DebugPrintSheet sheet(settings);
  EXPECT_EQ(sheet.objectName(), "DebugPrintSheet");
  EXPECT_FALSE(sheet.windowTitle().isEmpty());

  const std::array<DebugPage, 5> order{DebugPage::Summary, DebugPage::Inputs,
                                       DebugPage::Intermediates, DebugPage::Results,
                                       DebugPage::MonteCarlo};
  QTabWidget* pages = sheet.pages();
  ASSERT_EQ(pages->count(), 5);
  const QStringList tabs{"Summary", "Inputs", "Intermediates", "Results", "Monte Carlo"};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(pages->tabText(i), tabs[i]);

  int expected = 0;
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    QAbstractButton* box = sheet.switchButtons()->button(static_cast<int>(info.id));
    if (info.page == DebugPage::QlpOlf) {
      EXPECT_EQ(box, nullptr) << info.name;
      continue;
    }
    ++expected;
    ASSERT_NE(box, nullptr) << info.name;
    EXPECT_EQ(box->text().toStdString(), info.label);
    EXPECT_EQ(groupOf(box).toStdString(), info.group) << info.name;
    EXPECT_EQ(box->isChecked(), info.id == DebugSwitch::FilterMeansFinal) << info.name;
    int onPages = 0;
    for (int i = 0; i < 5; ++i) {
      if (pages->widget(i)->isAncestorOf(box)) {
        ++onPages;
        EXPECT_EQ(order[static_cast<std::size_t>(i)], info.page) << info.name;
      }
    }
    EXPECT_EQ(onPages, 1) << info.name;
  }
  EXPECT_EQ(expected, kDebugSwitchCount - 12);
  EXPECT_EQ(sheet.switchButtons()->buttons().size(), expected);

  sheet.switchButtons()->button(static_cast<int>(DebugSwitch::FilterMeansFinal))->click();
  EXPECT_FALSE(settings.switches.any());
  for (const DebugSwitchInfo& info : debugSwitchTable()) {
    if (info.page == DebugPage::QlpOlf) continue;
    QAbstractButton* box = sheet.switchButtons()->button(static_cast<int>(info.id));
    box->click();
    DebugSwitches only;
    only.set(info.id);
    EXPECT_EQ(settings.switches, only) << info.name;
    box->click();
    EXPECT_FALSE(settings.switches.any()) << info.name;
  }

  // A clicked box stays after Cancel.
  sheet.switchButtons()->button(static_cast<int>(DebugSwitch::ResultsThetaMeans))->click();
  pressCancel(sheet);
  DebugSwitches kept;
  kept.set(DebugSwitch::ResultsThetaMeans);
  EXPECT_EQ(settings.switches, kept);
}

TEST(DebugPrintSheet, RunSelectionWritesAtOnceAndRunNumberOnlyOnOkWhenItNamesARun) {
  test::qtApp();
  DebugPrintSettings settings;
  settings.runSelection = DebugRunSelection::RunNumber;
  settings.runNumber = 4;
  {
    DebugPrintSheet sheet(settings);
    sheet.show();
    QButtonGroup* runs = sheet.runSelectionButtons();
    QAbstractButton* first = runs->button(static_cast<int>(DebugRunSelection::FirstRun));
    QAbstractButton* numbered = runs->button(static_cast<int>(DebugRunSelection::RunNumber));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(numbered, nullptr);
    EXPECT_EQ(first->text(), "Only the first run");
    EXPECT_EQ(numbered->text(), "Only run number y");
    EXPECT_FALSE(first->isChecked());
    EXPECT_TRUE(numbered->isChecked());
    EXPECT_EQ(sheet.runNumberEdit()->text(), "4");
    // The run restriction and its number are on the Summary page, under their caption.
    EXPECT_TRUE(sheet.pages()->widget(0)->isAncestorOf(first));
    EXPECT_TRUE(sheet.pages()->widget(0)->isAncestorOf(sheet.runNumberEdit()));
    EXPECT_EQ(groupOf(first), "Turn on selected print only in the following runs");

    first->click();
    EXPECT_EQ(settings.runSelection, DebugRunSelection::FirstRun);
    type(sheet.runNumberEdit(), "9");
    pressCancel(sheet);
    EXPECT_EQ(settings.runSelection, DebugRunSelection::FirstRun);  // the click stays
    EXPECT_EQ(settings.runNumber, 4);                               // the typing does not
  }

  struct Case {
    const char* typed;
    int stored;
  };
  // Typed text and the run number after OK, starting from 4 each time.
  const Case cases[] = {{"7", 7}, {"12x", 12}, {" 3", 3}, {"0", 4}, {"-2", 4}, {"abc", 4}, {"", 4}};
  for (const Case& c : cases) {
    settings.runNumber = 4;
    DebugPrintSheet sheet(settings);
    sheet.show();
    sheet.runSelectionButtons()->button(static_cast<int>(DebugRunSelection::RunNumber))->click();
    type(sheet.runNumberEdit(), QString::fromLatin1(c.typed));
    pressOk(sheet);
    EXPECT_EQ(sheet.result(), QDialog::Accepted);
    EXPECT_EQ(settings.runNumber, c.stored) << "typed '" << c.typed << "'";
    EXPECT_EQ(settings.runSelection, DebugRunSelection::RunNumber);
  }
}

TEST(SeedDialog, OkMakesTheNextDrawStartFromTheTypedSeedAndCancelChangesNothing) {
  test::qtApp();
  RandomState state;
  state.vxSeedText = "31";
  state.vxSeed = 31;
  state.quarnsSeedText = "0.25";
  state.quarnsSeed = 0.25f;
  {
    SeedDialog dialog(state);
    EXPECT_EQ(dialog.objectName(), "PrefSeed");
    EXPECT_EQ(dialog.windowTitle(), "Seed for Monte Carlo Generator");
    auto* vx = dialog.findChild<QLineEdit*>("edit2254");
    auto* quarns = dialog.findChild<QLineEdit*>("edit2258");
    ASSERT_NE(vx, nullptr);
    ASSERT_NE(quarns, nullptr);
    EXPECT_EQ(vx->text(), "31");
    EXPECT_EQ(quarns->text(), "0.25");
    EXPECT_EQ(vx->maxLength(), 8);
    EXPECT_EQ(quarns->maxLength(), 8);
    EXPECT_EQ(dialog.focusWidget(), quarns);
    EXPECT_TRUE(hasLabel(dialog, "Integer Seed for VX Method"));
    EXPECT_TRUE(hasLabel(dialog, "Not Currently in Use"));
    EXPECT_TRUE(hasLabel(dialog, "Floating Point Seed for Quarns' Method"));
    EXPECT_TRUE(hasLabel(dialog, "Now in Use"));

    dialog.show();
    type(vx, "99");
    type(quarns, "0.75");
    pressCancel(dialog);
    EXPECT_EQ(state.vxSeedText, "31");
    EXPECT_EQ(state.vxSeed, 31);
    EXPECT_EQ(state.quarnsSeedText, "0.25");
    EXPECT_EQ(state.quarnsSeed, 0.25f);
  }
  {
    SeedDialog dialog(state);
    dialog.show();
    type(dialog.vxSeedEdit(), "123456789012");  // cut to 8 characters by the field
    type(dialog.quarnsSeedEdit(), "0.123456789");
    EXPECT_EQ(dialog.quarnsSeedEdit()->text(), "0.123456");
    pressOk(dialog);
    EXPECT_EQ(state.vxSeedText, "12345678");
    EXPECT_EQ(state.vxSeed, 12345678);
    EXPECT_EQ(state.quarnsSeedText, "0.123456");
    EXPECT_EQ(state.quarnsSeed, 0.123456f);
    // The next two uniforms continue from the typed seed.
    const double u1 = quarnsByHand(0.123456f);
    const double u2 = quarnsByHand(static_cast<float>(u1));
    EXPECT_EQ(quarnsUniform(state), u1);
    EXPECT_EQ(quarnsUniform(state), u2);
  }
  {
    // Shown again on the next visit; garbage reads as 0 and the draw starts from 0.
    SeedDialog dialog(state);
    EXPECT_EQ(dialog.quarnsSeedEdit()->text(), "0.123456");
    dialog.show();
    type(dialog.vxSeedEdit(), "");
    type(dialog.quarnsSeedEdit(), "seed?");
    pressOk(dialog);
    EXPECT_EQ(state.vxSeed, 0);
    EXPECT_EQ(state.quarnsSeedText, "seed?");
    EXPECT_EQ(state.quarnsSeed, 0.0f);
    EXPECT_EQ(quarnsUniform(state), 5701.5 / 566927.0);
  }
}

TEST(CautionDialog, OkConvertsEveryFieldLikeTheWorkbenchAndCancelChangesNothing) {
  test::qtApp();
  CautionExperiment caution;
  caution.on = 0;
  caution.row = 2;
  caution.column = 3;
  caution.value = 0.1;
  caution.period = 5;
  {
    CautionDialog dialog(caution);
    EXPECT_EQ(dialog.objectName(), "Caution_Exp");
    EXPECT_EQ(dialog.windowTitle(), "Caution Experiment");
    EXPECT_EQ(dialog.onEdit()->text(), "0");
    EXPECT_EQ(dialog.rowEdit()->text(), "2");
    EXPECT_EQ(dialog.columnEdit()->text(), "3");
    EXPECT_EQ(dialog.valueEdit()->text(), "0.1");
    EXPECT_EQ(dialog.periodEdit()->text(), "5");
    EXPECT_EQ(dialog.findChild<QLineEdit*>("cautionPeriod"), dialog.periodEdit());
    for (const char* text :
         {"Indicator to Turn On Experiment", "One for On and Zero for Off", "Row", "Column",
          "Perturbed Value", "Time Period - (integer rather than acronym)"}) {
      EXPECT_TRUE(hasLabel(dialog, QString::fromLatin1(text))) << text;
    }
    ASSERT_NE(dialog.findChild<QGroupBox*>(), nullptr);
    EXPECT_EQ(dialog.findChild<QGroupBox*>()->title(), "Element in SITT0 to Perturb");

    dialog.show();
    type(dialog.onEdit(), "1");
    type(dialog.valueEdit(), "7");
    pressCancel(dialog);
    EXPECT_EQ(caution.on, 0);
    EXPECT_EQ(caution.value, 0.1);
  }
  {
    // OK without an edit stores the same values, the double to the last bit.
    CautionDialog dialog(caution);
    pressOk(dialog);
    EXPECT_EQ(caution.on, 0);
    EXPECT_EQ(caution.row, 2);
    EXPECT_EQ(caution.column, 3);
    EXPECT_EQ(caution.value, 0.1);
    EXPECT_EQ(caution.period, 5);
  }
  // Each field converted as the workbench converts text: its leading number, else 0.
  auto okWith = [&](std::array<const char*, 5> texts) {
    CautionDialog dialog(caution);
    dialog.show();
    type(dialog.onEdit(), texts[0]);
    type(dialog.rowEdit(), texts[1]);
    type(dialog.columnEdit(), texts[2]);
    type(dialog.valueEdit(), texts[3]);
    type(dialog.periodEdit(), texts[4]);
    pressOk(dialog);
    return std::tuple(caution.on, caution.row, caution.column, caution.value, caution.period);
  };
  EXPECT_EQ(okWith({"1", " 4", "1x", "-2.5E-3", "12.9"}), std::tuple(1, 4, 1, -0.0025, 12));
  EXPECT_EQ(okWith({"on", "", "-", "big", "t=3"}), std::tuple(0, 0, 0, 0.0, 0));
}

TEST(ImportColumnsDialog, OkStoresAPositiveCountAndKeepsTheOldOneOtherwise) {
  test::qtApp();
  int columns = 5;
  {
    ImportColumnsDialog dialog(columns);
    EXPECT_EQ(dialog.objectName(), "Import_Cols");
    EXPECT_EQ(dialog.windowTitle(), "Columns in Imported Matrix");
    EXPECT_TRUE(hasLabel(dialog, "Enter the number of columns in the imported matrix."));
    EXPECT_EQ(dialog.findChild<QLineEdit*>("editColumns"), dialog.columnsEdit());
    EXPECT_EQ(dialog.columnsEdit()->text(), "5");
    dialog.show();
    type(dialog.columnsEdit(), "9");
    pressCancel(dialog);
    EXPECT_EQ(columns, 5);
  }
  struct Case {
    const char* typed;
    int stored;
  };
  const Case cases[] = {{"7", 7},   {"1", 1}, {"12 columns", 12}, {"0", 5}, {"-3", 5},
                        {"abc", 5}, {"", 5}};
  for (const Case& c : cases) {
    columns = 5;
    ImportColumnsDialog dialog(columns);
    dialog.show();
    type(dialog.columnsEdit(), QString::fromLatin1(c.typed));
    pressOk(dialog);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(columns, c.stored) << "typed '" << c.typed << "'";
  }
}

TEST(AboutDialog, NamesTheProgramAndTheProjectVersion) {
  test::qtApp();
  AboutDialog dialog;
  EXPECT_EQ(dialog.objectName(), "AboutBox");
  EXPECT_EQ(dialog.windowTitle(), "About Ovaro");
  EXPECT_TRUE(hasLabel(dialog, "Ovaro"));

  // The shown version is the one the build declares.
  std::ifstream cmake(std::string(OVARO_SOURCE_DIR) + "/CMakeLists.txt");
  ASSERT_TRUE(cmake.good());
  std::stringstream buffer;
  buffer << cmake.rdbuf();
  const std::string top = buffer.str();
  std::smatch match;
  ASSERT_TRUE(std::regex_search(top, match, std::regex(R"(project\(ovaro VERSION ([0-9.]+))")));
  EXPECT_EQ(std::string(kOvaroVersion), match[1].str());
  EXPECT_TRUE(hasLabel(dialog, QString::fromStdString("Version " + match[1].str())));

  auto* box = dialog.findChild<QDialogButtonBox*>();
  ASSERT_NE(box, nullptr);
  EXPECT_EQ(box->button(QDialogButtonBox::Cancel), nullptr);
  pressOk(dialog);
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

}  // namespace
}  // namespace ovaro::ui
