// The option, form, results and description dialogs on their own: what each shows, and what it
// writes, and when.
#include <QCheckBox>
#include <QPlainTextEdit>
#include <array>
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
    press(sheetPages ? static_cast<QDialog&>(sheet) : single, Ok::Cancel);
    EXPECT_TRUE(settings.switches.on(preset));
  }
  // The single page's "All" covers the page without ticking the other boxes.
  DebugSwitches switches;
  DebugPrintOptionsDialog dialog(switches);
  dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpAll))->click();
  EXPECT_TRUE(switches.on(DebugSwitch::QlpGAndG));
  EXPECT_FALSE(dialog.buttons()->button(static_cast<int>(DebugSwitch::QlpGAndG))->isChecked());
}

// Types `texts` into the dialog's fields named `fields`, then presses OK or Cancel.
void enter(QDialog& d, std::vector<const char*> fields, std::vector<const char*> texts, bool ok) {
  d.show();
  for (std::size_t i = 0; i < texts.size(); ++i) type(d.findChild<QLineEdit*>(fields[i]), texts[i]);
  press(d, ok ? Ok::Ok : Ok::Cancel);
}

// The typed fields: OK stores each field's leading number (else 0), a count only when positive;
// the seeds and the Monte Carlo runs stop at 8 characters; Cancel stores nothing.
TEST(TypedFields, OkStoresTheLeadingNumberAndCancelNothing) {
  test::qtApp();
  const std::tuple<const char*, bool, int> counts[] = {{"12x", true, 12}, {" 3", true, 3},
                                                       {"0", true, 4},    {"-2", true, 4},
                                                       {"abc", true, 4},  {"9", false, 4}};
  for (auto [typed, ok, count] : counts) {
    DebugPrintSettings settings{{}, DebugRunSelection::RunNumber, 4};
    int columns = 4;
    DebugPrintSheet sheet(settings);
    ImportColumnsDialog dialog(columns);
    EXPECT_EQ(sheet.runNumberEdit()->text(), "4");
    sheet.runSelectionButtons()->button(static_cast<int>(DebugRunSelection::FirstRun))->click();
    enter(sheet, {"editRunNumber"}, {typed}, ok);
    enter(dialog, {"editColumns"}, {typed}, ok);
    EXPECT_EQ(std::tuple(settings.runNumber, columns, settings.runSelection),
              std::tuple(count, count, DebugRunSelection::FirstRun))  // the click writes at once
        << typed;
  }
  for (const bool ok : {false, true}) {
    SCOPED_TRACE(ok ? "OK" : "Cancel");
    RandomState random;
    SeedDialog seeds(random);
    EXPECT_EQ(seeds.focusWidget(), seeds.quarnsSeedEdit());  // the seed in use
    enter(seeds, {"edit2254", "edit2258"}, {"123456789012", "0.123456789"}, ok);
    EXPECT_EQ(std::tie(random.vxSeed, random.quarnsSeedText, random.quarnsSeed),
              ok ? std::tuple(12345678, std::string("0.123456"), 0.123456f)
                 : std::tuple(27, std::string("0.5"), 0.5f));
    // OK unedited keeps the caution's value to the last bit.
    for (const bool edited : {false, true}) {
      CautionExperiment c{0, 2, 3, 0.1, 5};
      CautionDialog caution(c);
      enter(caution, {"cautionOn", "cautionRow", "cautionColumn", "cautionValue", "cautionPeriod"},
            edited ? std::vector{"1", " 4", "1x", "-2.5E-3", "t=3"} : std::vector<const char*>{},
            ok);
      EXPECT_EQ(std::tuple(c.on, c.row, c.column, c.value, c.period),
                ok && edited ? std::tuple(1, 4, 1, -0.0025, 0) : std::tuple(0, 2, 3, 0.1, 5));
    }
    Dimensions d = sized(2, 1, 1, 1, 5).dims;
    const Dimensions before = d;
    SizeDialog size(d);
    enter(size, {"edit303", "edit302", "edit309", "edit310", "edit313", "edit307"},
          {"4", "x", "2001", "2010", "1.0E-06", "123456789"}, ok);
    if (ok)  // texts as typed, nt following the periods
      EXPECT_EQ(
          std::tie(d.n.value, d.m.text, d.m.value, d.nt.value, d.tolerance, d.nmc.text, d.l.value),
          std::make_tuple(4, std::string("x"), 0, 10, 1e-6, std::string("12345678"), 1));
    else
      EXPECT_EQ(d, before);
    int index = 0, confirmed = -1;
    DeleteElemDialog del(index, confirmed);
    enter(del, {"edit1072"}, {"3"}, ok);
    EXPECT_EQ(std::pair(index, confirmed), ok ? std::pair(3, 1) : std::pair(0, 0));
  }
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
    dialog.displays()->button(3340)->click();
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
  dialog.displays()->button(3356)->click();
  dialog.displays()->button(3304)->click();
  dialog.okButton()->click();
  EXPECT_EQ(dialog.result(), QDialog::Accepted);
  EXPECT_EQ(none, (DisplayPreferences{3304, false, false, true, false}));
}

// Opening shows the stored choices (a format that is not one shows the default 770, without
// storing it); format and boxes apply at once, the orientation only on OK.
TEST(ResultsPreferences, FormatAndBoxesApplyAtOnceOrientationWaitsForOk) {
  test::qtApp();
  DisplayPreferences prefs;
  int format = 0;
  {
    ResultsPreferencesDialog dialog(prefs, format);
    EXPECT_EQ(dialog.formats()->checkedId(), 770);
    EXPECT_EQ(format, 0);
    EXPECT_EQ(buttonsOf(dialog.formats()), expected("formats"));
    EXPECT_EQ(buttonsOf(dialog.orientation()), (IdLabels{{3450, "Rows"}, {3454, "Columns"}}));
    EXPECT_EQ(dialog.orientation()->checkedId(), 3450);
    EXPECT_FALSE(dialog.desiredBox()->isChecked());
    dialog.formats()->button(778)->click();
    dialog.formats()->button(790)->click();
    EXPECT_EQ(format, 790);
    dialog.desiredBox()->click();
    dialog.parametersBox()->click();
    dialog.orientation()->button(3454)->click();
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
    dialog.orientation()->button(id)->click();
    dialog.accept();
    EXPECT_EQ(prefs, (DisplayPreferences{0, true, true, rows, !rows}));
  }
}

// A click on a form writes its option at once, and Cancel does not undo it.
TEST(FormsDialog, ClicksWriteAtOnceAndCancelKeepsThem) {
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
    dialog.groupOf(id)->button(id)->click();
  EXPECT_TRUE(dialog.groupOf(opt::kWTerminalDifferent)
                  ->button(opt::kWTerminalDifferent)
                  ->text()
                  .startsWith("*"));
  press(dialog, Ok::Cancel);
  EXPECT_EQ(flags, expected);
}

// Buttons only for the matrices the model holds: a time-varying W offers WT, not W.
TEST(MatrixEntryDialog, OffersOnlyTheHeldMatrices) {
  test::qtApp();
  Model model = sized(2, 1, 1, 1, 4);
  model.flags.wForm = opt::kWTimeVarying;
  allocateModelArrays(model);
  MatrixEntryDialog dialog(*matrixEntryGroup("DataInCRW"), model, {});
  EXPECT_NE(dialog.buttons()->button(622), nullptr);  // WT
  EXPECT_EQ(dialog.buttons()->button(620), nullptr);  // W
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
