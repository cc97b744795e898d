// The specification, size, deletion, matrix-entry and acronym dialogs: what each writes, when.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <tuple>

#include "model/options.h"
#include "support/test_data.h"
#include "ui/dialogs/acronym_window.h"
#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

using test::press;
using test::type;

Model sized(int n, int m, int l, int first, int last) {
  Model model;
  clearModel(model);
  model.dims.n.set(n);
  model.dims.m.set(m);
  model.dims.l.set(l);
  model.dims.initialPeriod.set(first);
  model.dims.terminalPeriod.set(last);
  model.dims.recomputePeriods();
  return model;
}

// Size: texts are stored as typed and converted plainly (not a number: 0); nt follows the
// periods. Cancel writes nothing.
TEST(SizeDialog, OkConvertsEveryFieldAndRecomputesPeriodsCancelWritesNothing) {
  test::qtApp();
  for (bool ok : {true, false}) {
    Model model = sized(2, 1, 1, 1, 5);
    Dimensions expected = model.dims;
    SizeDialog dialog(model.dims);
    QStringList captions;
    for (const QLabel* l : dialog.findChildren<QLabel*>()) captions << l->text();
    for (const std::string& c : testing::dataSection("option_dialogs.txt", "Size"))
      EXPECT_TRUE(captions.contains(QString::fromStdString(c))) << c;
    // 307 stops at 8 characters.
    for (auto [id, text] : {std::pair{303, "4"},
                            {302, "x"},
                            {309, "2001"},
                            {310, "2010"},
                            {313, "1.0E-06"},
                            {307, "123456789"}})
      type(dialog.field(id), text);
    press(dialog, ok ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel);
    if (ok) {
      expected.n.set(4);
      expected.m = {"x", 0};
      expected.initialPeriod.set(2001);
      expected.terminalPeriod.set(2010);
      expected.recomputePeriods();
      expected.toleranceText = "1.0E-06";
      expected.tolerance = 1e-6;
      expected.nmc = {"12345678", 12345678};
      EXPECT_EQ(expected.nt.value, 10);
    }
    EXPECT_EQ(model.dims, expected);
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
  EXPECT_EQ(dialog.windowTitle(), "Form Specifications");
  for (int id : {opt::kWTimeVarying, opt::kPindyck, opt::kUdesTimeVarying, opt::kZTimeVarying})
    test::click(dialog.groupOf(id), id);
  EXPECT_TRUE(dialog.groupOf(opt::kWTerminalDifferent)
                  ->button(opt::kWTerminalDifferent)
                  ->text()
                  .startsWith("*"));
  press(dialog, QDialogButtonBox::Cancel);
  EXPECT_EQ(flags, expected);

  int index = 0, confirmed = -1;
  for (const auto& [typed, button, stored, confirms] :
       {std::tuple{"3", QDialogButtonBox::Ok, 3, 1}, {"1", QDialogButtonBox::Cancel, 3, 0}}) {
    DeleteElemDialog d(index, confirmed);
    type(d.field(), typed);
    press(d, button);
    EXPECT_EQ(index, stored);
    EXPECT_EQ(confirmed, confirms);
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
    std::vector<MatrixId> opened;
    MatrixEntryDialog dialog(group, model, [&](MatrixId id) { opened.push_back(id); });
    for (QAbstractButton* b : dialog.buttons()->buttons()) b->click();
    std::vector<MatrixId> held;
    for (MatrixId id : group.matrices) {
      if (model.holds(id)) held.push_back(id);
    }
    EXPECT_EQ(opened, held) << group.name;
  }
  const MatrixEntryGroup& crw = *matrixEntryGroup("DataInCRW");
  MatrixEntryDialog dialog(crw, model, {});
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
  press(window, QDialogButtonBox::Ok);
  EXPECT_EQ(model.states.acronyms[1], "INFL1234");
  EXPECT_EQ(model.states.names[1], "Inflation" + std::string(39, ' '));
  EXPECT_EQ(model.periods.acronyms[2], "Q3");
  EXPECT_EQ(model.states.acronyms[0], " ");
}

}  // namespace
}  // namespace ovaro::ui
