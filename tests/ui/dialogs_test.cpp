// The option, form, results and description dialogs on their own: what each shows, and what it
// writes, and when.
#include <QCheckBox>
#include <QPlainTextEdit>
#include <array>
#include <cstdint>
#include <regex>
#include <tuple>

#include "model/options.h"
#include "ui/description_dialog.h"
#include "ui/dialogs/acronym_window.h"
#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/harness.h"
#include "ui/option_dialogs.h"
#include "ui/results_dialogs.h"

namespace ovaro::ui {
namespace {

using test::click;
using test::press;
using test::type;
using Ok = QDialogButtonBox;

Model sized(int n, int m, int l, int first, int last) {
  Model model;
  clearModel(model);
  model.dims.n.set(n), model.dims.m.set(m), model.dims.l.set(l);
  model.dims.initialPeriod.set(first), model.dims.terminalPeriod.set(last);
  model.dims.recomputePeriods();
  return model;
}

// Each dialog's object name, window title and texts (tests/data/option_dialogs.txt).
TEST(Dialogs, EachShowsItsNameTitleAndTexts) {
  test::qtApp();
  std::array<bool, 5> flags{};
  UpdatingMethods methods;
  DebugSwitches switches;
  DebugPrintSettings settings;
  RandomState state;
  CautionExperiment caution;
  int columns = 5, format = 770, index = 0, confirmed = 0;
  Dimensions dims;
  SpecFlags spec;
  DisplayPreferences prefs;
  const std::vector<std::pair<const char*, std::function<std::unique_ptr<QDialog>()>>> make = {
      {"METHOD", [&] { return std::make_unique<MethodDialog>(flags); }},
      {"METHOD_WO", [&] { return std::make_unique<MethodWoDialog>(methods); }},
      {"DebugPrintOptions", [&] { return std::make_unique<DebugPrintOptionsDialog>(switches); }},
      {"DebugPrintSheet", [&] { return std::make_unique<DebugPrintSheet>(settings); }},
      {"PrefSeed", [&] { return std::make_unique<SeedDialog>(state); }},
      {"Caution_Exp", [&] { return std::make_unique<CautionDialog>(caution); }},
      {"Import_Cols", [&] { return std::make_unique<ImportColumnsDialog>(columns); }},
      {"AboutBox", [] { return std::make_unique<AboutDialog>(); }},
      {"Size", [&] { return std::make_unique<SizeDialog>(dims); }},
      {"Functional_Forms", [&] { return std::make_unique<FormsDialog>(spec); }},
      {"DeleteElem", [&] { return std::make_unique<DeleteElemDialog>(index, confirmed); }},
      {"DISPLAYS", [&] { return std::make_unique<DisplayOptionsDialog>(prefs); }},
      {"PrefResults", [&] { return std::make_unique<ResultsPreferencesDialog>(prefs, format); }}};
  for (const auto& [name, dialogOf] : make) {
    SCOPED_TRACE(name);
    const std::unique_ptr<QDialog> dialog = dialogOf();
    const std::vector<std::string> want = testing::dataSection("option_dialogs.txt", name);
    ASSERT_FALSE(want.empty());
    EXPECT_EQ(dialog->objectName().toStdString(), name);
    EXPECT_EQ(dialog->windowTitle().toStdString(), want[0]);
    const std::set<std::string> shown = test::textsOf(*dialog);
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
  press(dialog, Ok::Cancel);
  EXPECT_EQ(flags, (std::array<bool, 5>{false, true, true, false, true}));

  UpdatingMethods methods;
  methods.ce = true;
  MethodWoDialog wo(methods);
  EXPECT_TRUE(wo.buttons()->button(1650)->isChecked());
  for (int id : {1648, 1650, 1652}) wo.buttons()->button(id)->click();
  press(wo, Ok::Cancel);
  EXPECT_TRUE(methods.hcfr && !methods.ce && methods.olf);
}

// Both debug dialogs hold every switch of their pages once (the single page the twelve of QLP and
// OLF, the sheet all others), preset as the record says; each box sets only its own switch, and
// Cancel does not undo it.
TEST(DebugPrintDialogs, EachSwitchOnceAndEachBoxSetsOnlyItsSwitch) {
  test::qtApp();
  for (bool sheetPages : {false, true}) {
    SCOPED_TRACE(sheetPages ? "sheet" : "single page");
    DebugPrintSettings settings;
    const DebugSwitch preset = sheetPages ? DebugSwitch::FilterMeansFinal : DebugSwitch::QlpKAndP;
    settings.switches.set(preset);
    DebugPrintSheet sheet(settings);
    DebugPrintOptionsDialog single(settings.switches);
    QButtonGroup* buttons = sheetPages ? sheet.switchButtons() : single.buttons();
    std::set<int> ids, shown;
    for (const DebugSwitchInfo& info : debugSwitchTable())
      if ((info.page == DebugPage::QlpOlf) != sheetPages) ids.insert(static_cast<int>(info.id));
    EXPECT_EQ(ids.size(), sheetPages ? kDebugSwitchCount - 12 : 12);
    for (QAbstractButton* box : buttons->buttons()) {
      shown.insert(buttons->id(box));
      EXPECT_EQ(box->isChecked(), buttons->id(box) == static_cast<int>(preset));
    }
    EXPECT_EQ(shown, ids);
    click(buttons, static_cast<int>(preset));
    EXPECT_FALSE(settings.switches.any());
    for (QAbstractButton* box : buttons->buttons()) {
      box->click();
      DebugSwitches only;
      only.set(static_cast<DebugSwitch>(buttons->id(box)));
      EXPECT_EQ(settings.switches, only) << buttons->id(box);
      box->click();
    }
    click(buttons, static_cast<int>(preset));
    press(sheetPages ? static_cast<QDialog&>(sheet) : single, Ok::Cancel);
    EXPECT_TRUE(settings.switches.on(preset));
  }
  // The single page's "All" covers the page without ticking the other boxes.
  DebugSwitches switches;
  DebugPrintOptionsDialog dialog(switches);
  click(dialog.buttons(), static_cast<int>(DebugSwitch::QlpAll));
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
      settings.runSelection = DebugRunSelection::RunNumber;
      DebugPrintSheet runs(settings);
      ImportColumnsDialog cols(columns);
      QDialog& dialog = sheet ? static_cast<QDialog&>(runs) : cols;
      QLineEdit* edit = sheet ? runs.runNumberEdit() : cols.columnsEdit();
      EXPECT_TRUE(runs.pages()->widget(0)->isAncestorOf(runs.runNumberEdit()));
      if (sheet && typed == nullptr)
        click(runs.runSelectionButtons(), static_cast<int>(DebugRunSelection::FirstRun));
      dialog.show();
      EXPECT_EQ(edit->text(), "4");
      type(edit, typed == nullptr ? "9" : typed);
      press(dialog, typed == nullptr ? Ok::Cancel : Ok::Ok);
      EXPECT_EQ(sheet ? settings.runNumber : columns, stored);
      if (sheet && typed == nullptr) {
        EXPECT_EQ(settings.runSelection, DebugRunSelection::FirstRun);  // the click stayed
      }
    }
  }
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
  auto enter = [&](const char* vx, const char* quarns, Ok::StandardButton button) {
    SeedDialog dialog(state);
    EXPECT_EQ(dialog.focusWidget(), dialog.quarnsSeedEdit());
    dialog.show();
    type(dialog.vxSeedEdit(), vx);
    type(dialog.quarnsSeedEdit(), quarns);
    press(dialog, button);
  };
  enter("99", "0.75", Ok::Cancel);
  EXPECT_EQ(std::tie(state.vxSeed, state.quarnsSeedText, state.quarnsSeed),
            std::make_tuple(27, std::string("0.25"), 0.25f));
  // The fields stop at 8 characters.
  enter("123456789012", "0.123456789", Ok::Ok);
  EXPECT_EQ(state.vxSeed, 12345678);
  EXPECT_EQ(state.quarnsSeedText, "0.123456");
  const double u1 = quarnsByHand(0.123456f);
  EXPECT_EQ(quarnsUniform(state), u1);
  EXPECT_EQ(quarnsUniform(state), quarnsByHand(static_cast<float>(u1)));
  // Garbage reads as 0 and the draw starts from 0.
  enter("1", "seed?", Ok::Ok);
  EXPECT_EQ(state.quarnsSeedText, "seed?");
  EXPECT_EQ(quarnsUniform(state), 5701.5 / 566927.0);
}

TEST(CautionDialog, OkConvertsEveryFieldLikeTheWorkbenchAndCancelChangesNothing) {
  test::qtApp();
  CautionExperiment caution{0, 2, 3, 0.1, 5};
  auto okWith = [&](std::array<const char*, 5> texts, bool cancel = false) {
    CautionDialog dialog(caution);
    dialog.show();
    QLineEdit* edits[] = {dialog.onEdit(), dialog.rowEdit(), dialog.columnEdit(),
                          dialog.valueEdit(), dialog.periodEdit()};
    for (std::size_t i = 0; i < 5; ++i)
      if (texts[i] != nullptr) type(edits[i], texts[i]);
    press(dialog, cancel ? Ok::Cancel : Ok::Ok);
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
  EXPECT_EQ(test::textsOf(dialog).count("Version " + match[1].str()), 1u);
  EXPECT_EQ(dialog.findChild<QDialogButtonBox*>()->button(Ok::Cancel), nullptr);
}

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
  DisplayPreferences prefs{3320, true, false, true, false};
  {
    DisplayOptionsDialog dialog(prefs);
    EXPECT_EQ(buttonsOf(dialog.displays()), expected("displays"));
    EXPECT_TRUE(dialog.displays()->exclusive());
    EXPECT_EQ(dialog.displays()->checkedId(), 3320);
    EXPECT_TRUE(dialog.desiredBox()->isChecked());
    EXPECT_FALSE(dialog.parametersBox()->isChecked());
    click(dialog.displays(), 3340);
    EXPECT_EQ(prefs.selector, 3340);
    dialog.desiredBox()->click();
    EXPECT_FALSE(prefs.desiredPaths);
    dialog.parametersBox()->click();
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
    EXPECT_EQ(buttonsOf(dialog.formats()), expected("formats"));
    EXPECT_EQ(buttonsOf(dialog.orientation()), (IdLabels{{3450, "Rows"}, {3454, "Columns"}}));
    EXPECT_EQ(dialog.orientation()->checkedId(), 3450);
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
  // Columns on OK, then back to rows through accept() itself, as a caller closing it would.
  for (const auto& [id, rows] : {std::pair{3454, false}, {3450, true}}) {
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 790);
    EXPECT_TRUE(dialog.desiredBox()->isChecked() && dialog.parametersBox()->isChecked());
    EXPECT_EQ(dialog.orientation()->checkedId(), rows ? 3454 : 3450);
    click(dialog.orientation(), id);
    dialog.accept();
    EXPECT_EQ(prefs, (DisplayPreferences{0, true, true, rows, !rows}));
  }
}

// Size: texts are stored as typed and converted plainly (not a number: 0), the Monte Carlo runs
// stop at 8 characters, and nt follows the periods. Cancel writes nothing.
TEST(SizeDialog, OkConvertsEveryFieldAndRecomputesPeriodsCancelWritesNothing) {
  test::qtApp();
  for (bool ok : {true, false}) {
    Model model = sized(2, 1, 1, 1, 5);
    const Dimensions before = model.dims;
    SizeDialog dialog(model.dims);
    const std::pair<int, const char*> typed[] = {
        {303, "4"}, {302, "x"}, {309, "2001"}, {310, "2010"}, {313, "1.0E-06"}, {307, "123456789"}};
    for (auto [id, text] : typed) type(dialog.field(id), text);
    press(dialog, ok ? Ok::Ok : Ok::Cancel);
    const Dimensions& d = model.dims;
    if (!ok) {
      EXPECT_EQ(d, before);
      continue;
    }
    EXPECT_EQ(
        std::tie(d.n.value, d.m.text, d.m.value, d.nt.value, d.tolerance, d.nmc.text, d.nmc.value,
                 d.l.value),
        std::make_tuple(4, std::string("x"), 0, 10, 1e-6, std::string("12345678"), 12345678, 1));
  }
}

// A click on a form writes its option at once, and Cancel does not undo it; the delete dialog
// stores its number and confirms on OK only.
TEST(FormsAndDeleteDialogs, ClicksWriteAtOnceAndOnlyOkConfirms) {
  test::qtApp();
  SpecFlags flags;
  flags.wForm = opt::kWConstant;
  flags.systemForm = opt::kRegular;
  SpecFlags expected = flags;
  expected.wForm = opt::kWTimeVarying;
  expected.systemForm = opt::kPindyck;
  expected.udesForm = opt::kUdesTimeVarying;
  expected.zForm = opt::kZTimeVarying;
  FormsDialog dialog(flags);
  for (int id : {opt::kWTimeVarying, opt::kPindyck, opt::kUdesTimeVarying, opt::kZTimeVarying})
    click(dialog.groupOf(id), id);
  EXPECT_TRUE(dialog.groupOf(opt::kWTerminalDifferent)
                  ->button(opt::kWTerminalDifferent)
                  ->text()
                  .startsWith("*"));
  press(dialog, Ok::Cancel);
  EXPECT_EQ(flags, expected);

  int index = 0, confirmed = -1;
  for (const auto& [typed, button, stored, confirms] :
       {std::tuple{"3", Ok::Ok, 3, 1}, {"1", Ok::Cancel, 3, 0}}) {
    DeleteElemDialog d(index, confirmed);
    type(d.field(), typed);
    press(d, button);
    EXPECT_EQ(std::pair(index, confirmed), std::pair(stored, confirms));
  }
}

// Buttons only for the matrices the model holds, each naming its matrix to the caller's action.
TEST(MatrixEntryDialog, OffersExactlyTheHeldMatricesOfItsGroup) {
  test::qtApp();
  Model model = sized(2, 1, 1, 1, 4);
  model.flags = {opt::kParameterUncertainty,
                 opt::kQuadraticTracking,
                 opt::kRegular,
                 opt::kForwardNo,
                 opt::kPolicyNo,
                 opt::kZTimeVarying,
                 opt::kWTimeVarying,
                 opt::kLambdaConstant,
                 opt::kXdesConstant,
                 opt::kUdesTimeVarying,
                 opt::kGenerateInternally};
  model.dims.np.set(2);
  allocateModelArrays(model);
  for (const MatrixEntryGroup& group : matrixEntryGroups()) {
    std::vector<MatrixId> opened, held;
    MatrixEntryDialog dialog(group, model, [&](MatrixId id) { opened.push_back(id); });
    for (QAbstractButton* b : dialog.buttons()->buttons()) b->click();
    for (MatrixId id : group.matrices)
      if (model.holds(id)) held.push_back(id);
    EXPECT_EQ(opened, held) << group.name;
  }
  MatrixEntryDialog dialog(*matrixEntryGroup("DataInCRW"), model, {});
  EXPECT_NE(dialog.buttons()->button(622), nullptr);  // WT
  EXPECT_EQ(dialog.buttons()->button(620), nullptr);  // no W
  EXPECT_EQ(systemEquationsGroup(model), "DataInSEC4");
}

// The acronym window writes on OK, refuses '~' as it is typed, and pads names to their slots.
TEST(AcronymWindow, OkWritesLabelsWithoutTheFieldSeparator) {
  test::qtApp();
  Model model = sized(2, 1, 0, 1, 3);
  model.flags.stochTerms = opt::kDeterministic;
  allocateModelArrays(model);
  AcronymWindow window(model);
  type(window.acronymField(LabelKind::States, 1), "IN~FL123456");
  type(window.nameField(LabelKind::States, 1), "Inflation");
  type(window.acronymField(LabelKind::Periods, 2), "Q3");
  press(window, Ok::Ok);
  EXPECT_EQ(model.states.acronyms[1], "INFL1234");
  EXPECT_EQ(model.states.names[1], "Inflation" + std::string(39, ' '));
  EXPECT_EQ(model.periods.acronyms[2], "Q3");
  EXPECT_EQ(model.states.acronyms[0], " ");
}

// Cancel keeps the old text; OK stores text the model file can hold; the field separator would
// break the file, so it is refused and the dialog stays open. The longest text that fits is one
// byte short of the limit.
TEST(DescriptionDialog, OkStoresTextTheFileCanHoldAndRefusesTheRest) {
  test::qtApp();
  RecordingPrompter prompter;
  std::string description = "Output gap.";
  for (const auto& [typed, ok, stored] :
       {std::tuple{"Output gap,\nten years.", false, "Output gap."},
        {"Output gap,\nten years.", true, "Output gap,\nten years."},
        {"a~b", true, "Output gap,\nten years."}}) {
    DescriptionDialog d(description, prompter);
    EXPECT_EQ(d.editor()->toPlainText().toStdString(), description);
    d.editor()->setPlainText(typed);
    ok ? d.accept() : d.reject();
    EXPECT_EQ(d.result() == QDialog::Accepted, ok && description == typed);
    EXPECT_EQ(description, stored);
  }
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Description");
  const std::string longest(kDescriptionBytes - 1, 'x');
  EXPECT_EQ(descriptionProblem(longest), "");
  EXPECT_EQ(descriptionProblem(longest + "x"),
            "The description holds 32000 bytes; at most 31999 fit in the model file. Shorten it "
            "and press OK again.");
}

}  // namespace
}  // namespace ovaro::ui
