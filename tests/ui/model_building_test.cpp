// Building a model in the workbench: the matrix editor on its own, then a model made from
// nothing through File: New, the data-entry dialogs and the editor, saved, reopened and solved.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>
#include <map>
#include <tuple>

#include "model/model_file.h"
#include "support/temp_dir.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/editor/matrix_editor.h"
#include "ui/main_window.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

using test::type;

int pressOk(QDialog& d) {
  test::press(d, QDialogButtonBox::Ok);
  return d.result();
}

TextMatrix filled(int rows, int cols) {
  TextMatrix t(rows, cols);
  for (int r = 0; r < rows; ++r) {
    for (int c = 0; c < cols; ++c) t.setCell(r, c, std::to_string(10 * r + c));
  }
  return t;
}

// Blocks of four columns hold a field for every cell with its text, whatever the shape; text that
// is not a plain number is marked with what it counts as; a block copied from a spreadsheet (tabs)
// or a numerical session (blanks) fills the cells from the focused one, cut at the edges.
TEST(MatrixEditor, ShowsMarksAndPastesCells) {
  test::qtApp();
  struct Case {
    int rows, cols, blocks;
  };
  for (Case k : {Case{2, 5, 2}, Case{3, 1, 1}, Case{0, 3, 1}, Case{2, 8, 2}, Case{1, 9, 3}}) {
    const TextMatrix cells = filled(k.rows, k.cols);
    MatrixEditor editor({"A Matrix", {}, {}, cells});
    EXPECT_EQ(editor.windowTitle(), "A Matrix");
    EXPECT_EQ(editor.blockCount(), k.blocks) << k.rows << "x" << k.cols;
    for (int r = 0; r < k.rows; ++r)
      for (int c = 0; c < k.cols; ++c)
        EXPECT_EQ(editor.cellField(r, c)->text().toStdString(), cells.cell(r, c));
  }
  for (auto [text, plain, countsAs] : {std::tuple{"0.95", true, 0.95},
                                       {" -1.5E+03 ", true, -1500.0},
                                       {".5", true, 0.5},
                                       {"abc", false, 0.0},
                                       {"3abc", false, 3.0},
                                       {"", false, 0.0},
                                       {"1e", false, 1.0},
                                       {"1,5", false, 1.0}}) {
    EXPECT_EQ(readCell(text).plainNumber, plain) << text;
    EXPECT_DOUBLE_EQ(readCell(text).countsAs, countsAs) << text;
  }
  MatrixEditor marked({"A Matrix", {}, {}, TextMatrix(1, 2)});
  type(marked.cellField(0, 1), "x");
  EXPECT_EQ(marked.markedCount(), 1);
  EXPECT_TRUE(marked.cellField(0, 1)->toolTip().contains("count as 0"));
  EXPECT_TRUE(marked.cellField(0, 0)->toolTip().isEmpty());

  for (const char* clip : {"1\t2\t3\n4\t5\t6\n7\t8\t9\n", "  1  2  3\r\n  4  5  6\r\n 7 8 9"}) {
    MatrixEditor editor({"A Matrix", {}, {}, TextMatrix(3, 3)});
    editor.cellField(1, 1)->setFocus();
    QApplication::processEvents();
    QEvent focus(QEvent::FocusIn);
    QApplication::sendEvent(editor.cellField(1, 1), &focus);
    QApplication::clipboard()->setText(QString::fromUtf8(clip));
    editor.editCommand(editor_ids::kPaste);  // the Edit menu's Paste
    editor.accept();
    TextMatrix expected(3, 3);
    for (auto [r, c, text] : {std::tuple{1, 1, "1"}, {1, 2, "2"}, {2, 1, "4"}, {2, 2, "5"}})
      expected.setCell(r, c, text);
    EXPECT_EQ(editor.copy(), expected) << clip;
  }
}

// Only OK moves the typed texts (cut at the 15 characters a cell holds) into the edit; Cancel
// writes back the cells as they were. Undriven, the edit waits for the "Finished Editing" box.
TEST(MatrixEditor, WritesBackOnlyWhatOkRead) {
  test::qtApp();
  for (const char* button : {"button1", "button200"}) {
    TextMatrix target = filled(2, 2);
    TextMatrix expected = target;
    editMatrix(target, "B Matrix", {"x1", "x2"}, {"u1", "u2"}, [&](MatrixEditor& e) {
      type(e.cellField(1, 0), "1.0E-06");
      type(e.cellField(0, 1), "12345678901234567890");
      e.findChild<QPushButton*>(button)->click();
    });
    if (std::string(button) == "button1") {
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

// ---- A model from nothing ----

// x(t+1) = a x + b u + c z over Model periods 1..3 (solver horizon 2), tracking xdes and udes.
constexpr double kA = 0.9, kB = 0.5, kC = 1.0, kZ = 1.0, kX0 = 2.0, kW = 1.0, kLam = 0.5,
                 kXdes = 1.0, kUdes = 0.0;

double criterion(double u0, double u1) {
  const double x1 = kA * kX0 + kB * u0 + kC * kZ, x2 = kA * x1 + kB * u1 + kC * kZ;
  double j = 0;
  for (double x : {kX0, x1, x2}) j += 0.5 * kW * (x - kXdes) * (x - kXdes);
  for (double u : {u0, u1}) j += 0.5 * kLam * (u - kUdes) * (u - kUdes);
  return j;
}

// The optimum of the quadratic criterion by its normal equations, with gradient and Hessian from
// differences (exact for a quadratic up to rounding) and Cramer's rule: no Riccati recursion.
std::array<double, 2> bruteForceOptimum() {
  const double h = 1.0;
  const double j0 = criterion(0, 0);
  const double g0 = (criterion(h, 0) - criterion(-h, 0)) / (2 * h);
  const double g1 = (criterion(0, h) - criterion(0, -h)) / (2 * h);
  const double h00 = (criterion(h, 0) - 2 * j0 + criterion(-h, 0)) / (h * h);
  const double h11 = (criterion(0, h) - 2 * j0 + criterion(0, -h)) / (h * h);
  const double h01 =
      (criterion(h, h) - criterion(h, -h) - criterion(-h, h) + criterion(-h, -h)) / (4 * h * h);
  const double det = h00 * h11 - h01 * h01;
  return {(-g0 * h11 + g1 * h01) / det, (-g1 * h00 + g0 * h01) / det};
}

TEST(ModelBuilding, NewModelThroughEveryDialogSavesReopensAndSolvesByQlp) {
  test::qtApp();
  testing::TempDir dir;
  const std::string path = dir.file("tiny.ovi");
  const std::map<QString, QString> values{{"A Matrix", "0.9"},
                                          {"B Matrix", "0.5"},
                                          {"C Matrix", "1"},
                                          {"Z Elements", "1.0"},
                                          {"X0 Vector", "2"},
                                          {"W  - Enter Diagonal Elements Only", "1"},
                                          {"LAMBDA  - Enter Diagonal Elements Only", "0.5"},
                                          {"XDES Matrix - Constant", "1"},
                                          {"UDES Matrix - Constant", "0"}};
  std::vector<std::string> seen;
  {
    RecordingPrompter prompter;
    MainWindow window(prompter);
    window.setDialogRunner([&](QDialog& d) {
      const QString name = d.objectName();
      seen.push_back(name.toStdString());
      if (name == "Name") type(d.findChild<QLineEdit*>("edit300"), "TINY");
      if (name == "Size") {
        for (auto [id, text] : std::map<int, const char*>{
                 {303, "1"}, {302, "1"}, {305, "1"}, {309, "1"}, {310, "3"}, {313, "1.0E-06"}}) {
          type(d.findChild<QLineEdit*>(QStringLiteral("edit%1").arg(id)), text);
        }
      }
      if (auto* editor = dynamic_cast<MatrixEditor*>(&d)) {
        type(editor->cellField(0, 0), values.at(editor->windowTitle()));
        editor->findChild<QPushButton*>("button1")->click();
        return 1;
      }
      if (auto* entry = dynamic_cast<MatrixEntryDialog*>(&d)) {
        for (QAbstractButton* b : entry->buttons()->buttons()) b->click();
      }
      return pressOk(d);
    });
    window.dispatch(21);
    EXPECT_EQ(seen, (std::vector<std::string>{"Name", "Stochastic_Terms", "Size",
                                              "Functional_Forms", "Source_Random"}));
    window.dispatch(71);
    window.dispatch(75);
    prompter.scriptFileName(path);
    window.dispatch(26);
    EXPECT_EQ(window.workbench().model.dims.nt.value, 3);
    EXPECT_EQ(seen.size(), 5u + 1 + 5 + 1 + 4);  // five editors (A, B, C, Z, X0), four (W, ...)
    for (const Message& m : prompter.messages()) ADD_FAILURE() << m.caption << ": " << m.text;
  }
  RecordingPrompter prompter;
  MainWindow reopened(prompter, path);
  const Model& model = reopened.workbench().model;
  EXPECT_EQ(model.acronym, "TINY");
  EXPECT_EQ(model.dims.toleranceText, "1.0E-06");
  EXPECT_EQ(model.matrix(MatrixId::LAMBDA)->cell(0, 0), "0.5");
  reopened.dispatch(133);
  const StoredResult* qlp = reopened.workbench().results.find("QLP");
  ASSERT_NE(qlp, nullptr);
  const auto u = bruteForceOptimum();
  EXPECT_NEAR(qlp->solution.us(1, 0), u[0], 1e-9);
  EXPECT_NEAR(qlp->solution.us(1, 1), u[1], 1e-9);
  EXPECT_NEAR(qlp->solution.criterion, criterion(u[0], u[1]), 1e-9);
}

}  // namespace
}  // namespace ovaro::ui
