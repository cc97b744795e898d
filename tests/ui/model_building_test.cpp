// Building a model: the matrix editor on its own, then a model made from nothing through File:
// New, the data-entry dialogs and the editor, saved, reopened, solved and reshaped.
#include <QClipboard>
#include <QMessageBox>
#include <QTimer>
#include <map>
#include <tuple>

#include "ui/dialogs/form_dialogs.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/editor/matrix_editor.h"
#include "ui/harness.h"

namespace ovaro::ui {
namespace {

using test::type;

TextMatrix filled(int rows, int cols) {
  TextMatrix t(rows, cols);
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c) t.setCell(r, c, std::to_string(10 * r + c));
  return t;
}

// Blocks of four columns hold a field for every cell with its text, whatever the shape; text that
// is not a plain number is marked with what it counts as; a block copied from a spreadsheet (tabs)
// or a numerical session (blanks) fills the cells from the focused one, cut at the edges.
TEST(MatrixEditor, ShowsMarksAndPastesCells) {
  test::qtApp();
  for (auto [rows, cols, blocks] :
       {std::tuple{2, 5, 2}, {3, 1, 1}, {0, 3, 1}, {2, 8, 2}, {1, 9, 3}}) {
    const TextMatrix cells = filled(rows, cols);
    MatrixEditor editor({"A Matrix", {}, {}, cells});
    EXPECT_EQ(editor.windowTitle(), "A Matrix");
    EXPECT_EQ(editor.blockCount(), blocks) << rows << "x" << cols;
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c)
        EXPECT_EQ(editor.cellField(r, c)->text().toStdString(), cells.cell(r, c));
  }
  const std::tuple<const char*, bool, double> texts[] = {
      {"0.95", true, 0.95}, {" -1.5E+03 ", true, -1500.0},
      {".5", true, 0.5},    {"abc", false, 0.0},
      {"3abc", false, 3.0}, {"", false, 0.0},
      {"1e", false, 1.0},   {"1,5", false, 1.0}};
  for (auto [text, plain, countsAs] : texts) {
    EXPECT_EQ(readCell(text).plainNumber, plain) << text;
    EXPECT_DOUBLE_EQ(readCell(text).countsAs, countsAs) << text;
  }
  MatrixEditor marked({"A Matrix", {}, {}, TextMatrix(1, 2)});
  type(marked.cellField(0, 1), "x");
  EXPECT_EQ(marked.markedCount(), 1);
  EXPECT_TRUE(marked.cellField(0, 1)->toolTip().contains("count as 0"));
  EXPECT_TRUE(marked.cellField(0, 0)->toolTip().isEmpty());

  TextMatrix pasted(3, 3);
  for (auto [r, c, text] : {std::tuple{1, 1, "1"}, {1, 2, "2"}, {2, 1, "4"}, {2, 2, "5"}})
    pasted.setCell(r, c, text);
  for (const char* clip : {"1\t2\t3\n4\t5\t6\n7\t8\t9\n", "  1  2  3\r\n  4  5  6\r\n 7 8 9"}) {
    MatrixEditor editor({"A Matrix", {}, {}, TextMatrix(3, 3)});
    editor.cellField(1, 1)->setFocus();
    QApplication::processEvents();
    QEvent focus(QEvent::FocusIn);
    QApplication::sendEvent(editor.cellField(1, 1), &focus);
    QApplication::clipboard()->setText(QString::fromUtf8(clip));
    editor.editCommand(editor_ids::kPaste);  // the Edit menu's Paste
    editor.accept();
    EXPECT_EQ(editor.copy(), pasted) << clip;
  }
}

// Only OK moves the typed texts (cut at the 15 characters a cell holds) into the edit; Cancel
// writes back the cells as they were. Undriven, the edit waits for the "Finished Editing" box.
TEST(MatrixEditor, WritesBackOnlyWhatOkRead) {
  test::qtApp();
  for (const std::string button : {"button1", "button200"}) {
    TextMatrix target = filled(2, 2), expected = target;
    editMatrix(target, "B Matrix", {"x1", "x2"}, {"u1", "u2"}, [&](MatrixEditor& e) {
      type(e.cellField(1, 0), "1.0E-06");
      type(e.cellField(0, 1), "12345678901234567890");
      e.findChild<QPushButton*>(QString::fromStdString(button))->click();
    });
    if (button == "button1") {
      expected.setCell(1, 0, "1.0E-06");
      expected.setCell(0, 1, "123456789012345");
    }
    EXPECT_EQ(target, expected) << button;
  }
  TextMatrix target(1, 1);
  QTimer::singleShot(0, [] {
    MatrixEditor* editor = nullptr;
    for (QWidget* w : QApplication::topLevelWidgets())
      if (auto* e = qobject_cast<MatrixEditor*>(w); e != nullptr && e->isVisible()) editor = e;
    ASSERT_NE(editor, nullptr);
    editor->cellField(0, 0)->setText("7");
    editor->findChild<QPushButton*>("button1")->click();
    auto* box = editor->findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "Finished Editing");
    box->button(QMessageBox::Ok)->click();
  });
  editMatrix(target, "X0 Vector", {"x"}, {"X0"}, {});
  EXPECT_EQ(target.cell(0, 0), "7");
}

// x(t+1) = a x + b u + c z over Model periods 1..3 (solver horizon 2), tracking xdes and udes.
double criterion(double u0, double u1) {
  const double x1 = 0.9 * 2.0 + 0.5 * u0 + 1.0, x2 = 0.9 * x1 + 0.5 * u1 + 1.0;
  double j = 0;
  for (double x : {2.0, x1, x2}) j += 0.5 * (x - 1.0) * (x - 1.0);
  for (double u : {u0, u1}) j += 0.5 * 0.5 * u * u;
  return j;
}

// The optimum of the quadratic criterion by its normal equations, with gradient and Hessian from
// differences (exact for a quadratic up to rounding) and Cramer's rule: no Riccati recursion.
std::array<double, 2> bruteForceOptimum() {
  const double j0 = criterion(0, 0);
  const double g0 = (criterion(1, 0) - criterion(-1, 0)) / 2,
               g1 = (criterion(0, 1) - criterion(0, -1)) / 2;
  const double h00 = criterion(1, 0) - 2 * j0 + criterion(-1, 0);
  const double h11 = criterion(0, 1) - 2 * j0 + criterion(0, -1);
  const double h01 =
      (criterion(1, 1) - criterion(1, -1) - criterion(-1, 1) + criterion(-1, -1)) / 4;
  const double det = h00 * h11 - h01 * h01;
  return {(-g0 * h11 + g1 * h01) / det, (-g1 * h00 + g0 * h01) / det};
}

TEST(ModelBuilding, NewModelThroughEveryDialogSavesReopensAndSolvesByQlp) {
  testing::TempDir dir;
  const std::string path = dir.file("tiny.ovi");
  // What the editors take, by the first word of their titles: "A Matrix", "W  - Enter ...".
  const std::map<QString, QString> values{{"A", "0.9"},      {"B", "0.5"},  {"C", "1"},
                                          {"Z", "1.0"},      {"X0", "2"},   {"W", "1"},
                                          {"LAMBDA", "0.5"}, {"XDES", "1"}, {"UDES", "0"}};
  const std::pair<int, const char*> size[] = {{303, "1"}, {302, "1"}, {305, "1"},
                                              {309, "1"}, {310, "3"}, {313, "1.0E-06"}};
  {
    test::Harness h;
    h.fill = [&](QDialog& d) {
      if (d.objectName() == "Name") type(d.findChild<QLineEdit*>("edit300"), "TINY");
      if (d.objectName() == "Size")
        for (auto [id, text] : size)
          type(d.findChild<QLineEdit*>(QStringLiteral("edit%1").arg(id)), text);
      if (auto* editor = dynamic_cast<MatrixEditor*>(&d)) {
        type(editor->cellField(0, 0), values.at(editor->windowTitle().section(' ', 0, 0)));
        editor->findChild<QPushButton*>("button1")->click();
        return 1;
      }
      if (auto* entry = dynamic_cast<MatrixEntryDialog*>(&d))
        for (QAbstractButton* b : entry->buttons()->buttons()) b->click();
      test::press(d, QDialogButtonBox::Ok);
      return d.result();
    };
    h.window->dispatch(cmd::kNew);
    EXPECT_EQ(h.dialogs, (std::vector<std::string>{"Name", "Stochastic_Terms", "Size",
                                                   "Functional_Forms", "Source_Random"}));
    h.window->dispatch(71);
    h.window->dispatch(75);
    h.run(cmd::kSaveAs, {path});
    EXPECT_EQ(h.window->workbench().model.dims.nt.value, 3);
    EXPECT_EQ(h.dialogs.size(),
              5u + 1 + 5 + 1 + 4);  // five editors (A, B, C, Z, X0), four (W, ...)
    for (const Message& m : h.prompter.messages()) ADD_FAILURE() << m.caption << ": " << m.text;
  }
  test::Harness reopened(path);
  const Model& model = reopened.window->workbench().model;
  EXPECT_EQ(model.acronym, "TINY");
  EXPECT_EQ(model.dims.toleranceText, "1.0E-06");
  EXPECT_EQ(model.matrix(MatrixId::LAMBDA)->cell(0, 0), "0.5");
  reopened.window->dispatch(cmd::kSolveQlp);
  const StoredResult* qlp = reopened.window->workbench().results.find("QLP");
  ASSERT_NE(qlp, nullptr);
  const auto u = bruteForceOptimum();
  EXPECT_NEAR(qlp->solution.us(1, 0), u[0], 1e-9);
  EXPECT_NEAR(qlp->solution.us(1, 1), u[1], 1e-9);
  EXPECT_NEAR(qlp->solution.criterion, criterion(u[0], u[1]), 1e-9);
  // Data: Size grows the model through the transformation (old cells kept, old results gone);
  // Delete a State Variable takes the new state out again.
  const TextMatrix a = *model.matrix(MatrixId::A);
  reopened.fill = [](QDialog& d) {
    if (auto* size = qobject_cast<SizeDialog*>(&d)) size->field(303)->setText("2");
    if (auto* del = qobject_cast<DeleteElemDialog*>(&d)) del->field()->setText("2");
    return test::accepted(d);
  };
  reopened.prompter.setAnswerYes(true);
  reopened.window->dispatch(65);
  EXPECT_EQ(model.dims.n.value, 2);
  ASSERT_EQ(model.matrix(MatrixId::A)->rows(), 2);
  EXPECT_EQ(model.matrix(MatrixId::A)->cell(0, 0), a.cell(0, 0));
  EXPECT_FALSE(reopened.holdsResults());
  reopened.window->dispatch(121);
  EXPECT_EQ(model.dims.n.value, 1);
  EXPECT_EQ(*model.matrix(MatrixId::A), a);
}

}  // namespace
}  // namespace ovaro::ui
