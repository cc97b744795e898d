#include "ui/option_dialogs.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <regex>
#include <set>
#include <string>
#include <tuple>

#include "support/temp_dir.h"
#include "support/test_data.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

using test::press;
using test::type;

// Every text the dialog shows: labels, button texts, group captions and tab names.
std::set<std::string> textsOf(const QDialog& dialog) {
  std::set<std::string> out;
  for (const QLabel* l : dialog.findChildren<QLabel*>()) out.insert(l->text().toStdString());
  for (const QAbstractButton* b : dialog.findChildren<QAbstractButton*>())
    out.insert(b->text().toStdString());
  for (const QGroupBox* g : dialog.findChildren<QGroupBox*>()) out.insert(g->title().toStdString());
  for (const QTabWidget* t : dialog.findChildren<QTabWidget*>())
    for (int i = 0; i < t->count(); ++i) out.insert(t->tabText(i).toStdString());
  return out;
}

// The group box a check box sits in, or empty when it sits directly on its page.
std::string groupOf(const QAbstractButton* box) {
  for (const QObject* p = box->parent(); p != nullptr; p = p->parent())
    if (const auto* frame = qobject_cast<const QGroupBox*>(p)) return frame->title().toStdString();
  return {};
}

TEST(OptionDialogs, EachShowsItsNameTitleAndTexts) {
  test::qtApp();
  std::array<bool, 5> flags{};
  UpdatingMethods methods;
  DebugSwitches switches;
  DebugPrintSettings settings;
  RandomState state;
  CautionExperiment caution;
  int columns = 5;
  const std::vector<std::function<std::unique_ptr<QDialog>()>> make = {
      [&] { return std::make_unique<MethodDialog>(flags); },
      [&] { return std::make_unique<MethodWoDialog>(methods); },
      [&] { return std::make_unique<DebugPrintOptionsDialog>(switches); },
      [&] { return std::make_unique<DebugPrintSheet>(settings); },
      [&] { return std::make_unique<SeedDialog>(state); },
      [&] { return std::make_unique<CautionDialog>(caution); },
      [&] { return std::make_unique<ImportColumnsDialog>(columns); },
      [] { return std::make_unique<AboutDialog>(); }};
  const char* names[] = {"METHOD",   "METHOD_WO",   "DebugPrintOptions", "DebugPrintSheet",
                         "PrefSeed", "Caution_Exp", "Import_Cols",       "AboutBox"};
  for (std::size_t d = 0; d < make.size(); ++d) {
    SCOPED_TRACE(names[d]);
    const std::unique_ptr<QDialog> dialog = make[d]();
    const std::vector<std::string> want = testing::dataSection("option_dialogs.txt", names[d]);
    ASSERT_FALSE(want.empty());
    EXPECT_EQ(dialog->objectName().toStdString(), names[d]);
    EXPECT_EQ(dialog->windowTitle().toStdString(), want[0]);
    const std::set<std::string> shown = textsOf(*dialog);
    for (std::size_t i = 1; i < want.size(); ++i) EXPECT_EQ(shown.count(want[i]), 1u) << want[i];
  }
}

// Each box flips its own flag at once; the disabled VELD box nothing; Cancel keeps the clicks.
TEST(MethodDialog, EachBoxFlipsItsOwnFlagAtOnceAndCancelKeepsIt) {
  test::qtApp();
  std::array<bool, 5> flags{true, false, false, true, false};
  MethodDialog dialog(flags);
  const std::array<int, 5> ids{1618, 1620, 1622, 1624, 1626};
  for (std::size_t i = 0; i < ids.size(); ++i) {
    ASSERT_NE(dialog.buttons()->button(ids[i]), nullptr) << ids[i];
    EXPECT_EQ(dialog.buttons()->button(ids[i])->isChecked(), flags[i]) << ids[i];
    std::array<bool, 5> expected = flags;
    expected[i] = !expected[i];
    dialog.buttons()->button(ids[i])->click();
    EXPECT_EQ(flags, expected) << "clicked " << ids[i];
  }
  EXPECT_FALSE(dialog.buttons()->button(1628)->isEnabled());
  press(dialog, QDialogButtonBox::Cancel);
  EXPECT_EQ(flags, (std::array<bool, 5>{false, true, true, false, true}));

  UpdatingMethods methods;
  methods.ce = true;
  MethodWoDialog wo(methods);
  EXPECT_TRUE(wo.buttons()->button(1650)->isChecked());
  for (int id : {1648, 1650, 1652}) wo.buttons()->button(id)->click();
  press(wo, QDialogButtonBox::Cancel);
  EXPECT_TRUE(methods.hcfr && !methods.ce && methods.olf);
}

// Both debug dialogs: every switch of their pages once, in its group and page, preset as the
// record says, and each box sets only its own switch (and Cancel does not undo it).
TEST(DebugPrintDialogs, EachSwitchOnceInItsGroupAndEachBoxSetsOnlyItsSwitch) {
  test::qtApp();
  const DebugPage pageOrder[] = {DebugPage::Summary, DebugPage::Inputs, DebugPage::Intermediates,
                                 DebugPage::Results, DebugPage::MonteCarlo};
  for (bool sheetPages : {false, true}) {
    SCOPED_TRACE(sheetPages ? "sheet" : "single page");
    DebugPrintSettings settings;
    const DebugSwitch preset = sheetPages ? DebugSwitch::FilterMeansFinal : DebugSwitch::QlpKAndP;
    settings.switches.set(preset);
    std::unique_ptr<DebugPrintSheet> sheet;
    std::unique_ptr<DebugPrintOptionsDialog> single;
    if (sheetPages)
      sheet = std::make_unique<DebugPrintSheet>(settings);
    else
      single = std::make_unique<DebugPrintOptionsDialog>(settings.switches);
    QButtonGroup* buttons = sheetPages ? sheet->switchButtons() : single->buttons();
    int count = 0;
    for (const DebugSwitchInfo& info : debugSwitchTable()) {
      QAbstractButton* box = buttons->button(static_cast<int>(info.id));
      if ((info.page == DebugPage::QlpOlf) == sheetPages) {
        EXPECT_EQ(box, nullptr) << info.name;
        continue;
      }
      ++count;
      ASSERT_NE(box, nullptr) << info.name;
      EXPECT_EQ(box->text().toStdString(), info.label);
      EXPECT_EQ(groupOf(box), info.group) << info.name;
      EXPECT_EQ(box->isChecked(), info.id == preset) << info.name;
      if (sheetPages) {
        const auto page = std::find(std::begin(pageOrder), std::end(pageOrder), info.page);
        EXPECT_TRUE(sheet->pages()->widget(static_cast<int>(page - pageOrder))->isAncestorOf(box))
            << info.name;
      }
    }
    EXPECT_EQ(count, sheetPages ? kDebugSwitchCount - 12 : 12);
    EXPECT_EQ(buttons->buttons().size(), count);

    buttons->button(static_cast<int>(preset))->click();
    EXPECT_FALSE(settings.switches.any());
    for (QAbstractButton* box : buttons->buttons()) {
      box->click();
      DebugSwitches only;
      only.set(static_cast<DebugSwitch>(buttons->id(box)));
      EXPECT_EQ(settings.switches, only) << buttons->id(box);
      box->click();
    }
    buttons->button(static_cast<int>(preset))->click();
    if (sheetPages) press(*sheet, QDialogButtonBox::Cancel);
    if (!sheetPages) press(*single, QDialogButtonBox::Cancel);
    EXPECT_TRUE(settings.switches.on(preset));
  }
  // The single page's "All" covers the page without ticking the other boxes.
  DebugSwitches switches;
  DebugPrintOptionsDialog dialog(switches);
  dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpAll))->click();
  EXPECT_TRUE(switches.on(DebugSwitch::QlpGAndG));
  EXPECT_FALSE(dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpGAndG))->isChecked());
}

// The sheet's run number and the import column count: OK stores a positive leading number and
// keeps the old one otherwise; Cancel keeps it too. The sheet's run selection writes at once.
TEST(CountFields, OkStoresAPositiveNumberAndKeepsTheOldOneOtherwise) {
  test::qtApp();
  DebugPrintSettings settings;
  int columns = 4;
  const std::pair<const char*, int> cases[] = {{"7", 7},  {"12x", 12}, {" 3", 3}, {"0", 4},
                                               {"-2", 4}, {"abc", 4},  {"", 4},   {nullptr, 4}};
  for (const auto& [typed, stored] : cases) {
    for (const bool sheet : {true, false}) {
      SCOPED_TRACE(std::string(sheet ? "sheet, typed " : "columns, typed ") +
                   (typed ? typed : "9, then Cancel"));
      settings.runNumber = columns = 4;
      std::unique_ptr<QDialog> dialog;
      QLineEdit* edit = nullptr;
      if (sheet) {
        settings.runSelection = DebugRunSelection::RunNumber;
        auto s = std::make_unique<DebugPrintSheet>(settings);
        edit = s->runNumberEdit();
        EXPECT_TRUE(s->pages()->widget(0)->isAncestorOf(edit));
        if (typed == nullptr)
          s->runSelectionButtons()->button(static_cast<int>(DebugRunSelection::FirstRun))->click();
        dialog = std::move(s);
      } else {
        auto c = std::make_unique<ImportColumnsDialog>(columns);
        edit = c->columnsEdit();
        dialog = std::move(c);
      }
      dialog->show();
      EXPECT_EQ(edit->text(), "4");
      type(edit, typed == nullptr ? "9" : typed);
      press(*dialog, typed == nullptr ? QDialogButtonBox::Cancel : QDialogButtonBox::Ok);
      EXPECT_EQ(sheet ? settings.runNumber : columns, stored);
    }
  }
  EXPECT_EQ(settings.runSelection, DebugRunSelection::FirstRun);  // the click stayed
}

// The Quarns step written out from its definition, independently of the generator's code.
double quarnsByHand(float s) {
  const auto k = static_cast<std::int64_t>(static_cast<double>(s) * 566927.0);
  return (static_cast<double>((k * 3612 + 5701) % 566927) + 0.5) / 566927.0;
}

TEST(SeedDialog, OkMakesTheNextDrawStartFromTheTypedSeedAndCancelChangesNothing) {
  test::qtApp();
  RandomState state;
  state.quarnsSeedText = "0.25";
  state.quarnsSeed = 0.25f;
  auto enter = [&](const char* vx, const char* quarns, QDialogButtonBox::StandardButton button) {
    SeedDialog dialog(state);
    EXPECT_EQ(dialog.focusWidget(), dialog.quarnsSeedEdit());
    dialog.show();
    type(dialog.vxSeedEdit(), vx);
    type(dialog.quarnsSeedEdit(), quarns);
    press(dialog, button);
  };
  enter("99", "0.75", QDialogButtonBox::Cancel);
  EXPECT_EQ(state.vxSeed, 27);
  EXPECT_EQ(state.quarnsSeedText, "0.25");
  EXPECT_EQ(state.quarnsSeed, 0.25f);
  // The fields stop at 8 characters.
  enter("123456789012", "0.123456789", QDialogButtonBox::Ok);
  EXPECT_EQ(state.vxSeed, 12345678);
  EXPECT_EQ(state.quarnsSeedText, "0.123456");
  const double u1 = quarnsByHand(0.123456f);
  EXPECT_EQ(quarnsUniform(state), u1);
  EXPECT_EQ(quarnsUniform(state), quarnsByHand(static_cast<float>(u1)));
  // Garbage reads as 0 and the draw starts from 0.
  enter("1", "seed?", QDialogButtonBox::Ok);
  EXPECT_EQ(state.quarnsSeedText, "seed?");
  EXPECT_EQ(quarnsUniform(state), 5701.5 / 566927.0);
}

TEST(CautionDialog, OkConvertsEveryFieldLikeTheWorkbenchAndCancelChangesNothing) {
  test::qtApp();
  CautionExperiment caution;
  caution.on = 0;
  caution.row = 2;
  caution.column = 3;
  caution.value = 0.1;
  caution.period = 5;
  auto okWith = [&](std::array<const char*, 5> texts, bool cancel = false) {
    CautionDialog dialog(caution);
    dialog.show();
    QLineEdit* edits[] = {dialog.onEdit(), dialog.rowEdit(), dialog.columnEdit(),
                          dialog.valueEdit(), dialog.periodEdit()};
    for (std::size_t i = 0; i < 5; ++i)
      if (texts[i] != nullptr) type(edits[i], texts[i]);
    press(dialog, cancel ? QDialogButtonBox::Cancel : QDialogButtonBox::Ok);
    return std::tuple(caution.on, caution.row, caution.column, caution.value, caution.period);
  };
  EXPECT_EQ(okWith({"1", "4", "1", "7", "1"}, true), std::tuple(0, 2, 3, 0.1, 5));
  // OK without an edit stores the same values, the double to the last bit.
  EXPECT_EQ(okWith({nullptr, nullptr, nullptr, nullptr, nullptr}), std::tuple(0, 2, 3, 0.1, 5));
  // Each field converted as the workbench converts text: its leading number, else 0.
  EXPECT_EQ(okWith({"1", " 4", "1x", "-2.5E-3", "12.9"}), std::tuple(1, 4, 1, -0.0025, 12));
  EXPECT_EQ(okWith({"on", "", "-", "big", "t=3"}), std::tuple(0, 0, 0, 0.0, 0));
}

TEST(AboutDialog, ShowsTheVersionTheBuildDeclaresAndOnlyOk) {
  test::qtApp();
  AboutDialog dialog;
  const std::string top = testing::slurp(std::string(OVARO_SOURCE_DIR) + "/CMakeLists.txt");
  std::smatch match;
  ASSERT_TRUE(std::regex_search(top, match, std::regex(R"(project\(ovaro VERSION ([0-9.]+))")));
  EXPECT_EQ(textsOf(dialog).count("Version " + match[1].str()), 1u);
  EXPECT_EQ(dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel), nullptr);
}

}  // namespace
}  // namespace ovaro::ui
