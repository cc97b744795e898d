// File: Import and Export in the workbench, with a scripted prompter and scripted dialogs.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QButtonGroup>

#include "support/temp_dir.h"
#include "ui/dialogs/matrix_entry.h"
#include "ui/main_window.h"
#include "ui/menu_table.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

std::string source(const std::string& path) {
  return std::string(OVARO_SOURCE_DIR) + "/" + path;
}

TEST(InterchangeCommands, ImportVeldEchoesToTheDebugFileAndLeavesAnUntitledModel) {
  test::qtApp();
  testing::TempDir dir;
  RecordingPrompter prompter;
  MainWindow window(prompter, source("examples/track1.ovi"));
  prompter.scriptFileName(source("tests/data/interchange/learn1.vld"));
  prompter.scriptFileName(dir.file("import.dbg"));
  window.dispatch(cmd::kImportVeld);
  EXPECT_EQ(window.workbench().model.acronym, "LEARN1");
  EXPECT_EQ(window.windowTitle().remove("[*]").toStdString(), "Ovaro - (untitled)");
  EXPECT_EQ(prompter.messages().back().text, "Importation Completed");
  EXPECT_NE(testing::slurp(dir.file("import.dbg")).find("L7  L8  L9  L10 L11 L12 \n"),
            std::string::npos);
}

TEST(InterchangeCommands, ImportMatricesFillsTheChosenMatrixFromItsFile) {
  test::qtApp();
  testing::TempDir dir;
  RecordingPrompter prompter;
  MainWindow window(prompter, source("examples/track1.ovi"));
  testing::spit(dir.file("b.dma"), "0.75\n");
  window.setDialogRunner([](QDialog& d) {
    if (auto* entry = dynamic_cast<MatrixEntryDialog*>(&d))
      entry->buttons()->button(matrixButtonId(MatrixId::B))->click();
    d.reject();
    return static_cast<int>(QDialog::Rejected);
  });
  prompter.scriptFileName(dir.file("b.dma"));
  prompter.scriptFileName(dir.file("b.dbg"));
  window.dispatch(cmd::kImportSystem);
  EXPECT_EQ(window.workbench().model.matrix(MatrixId::B)->cell(0, 0), "0.75");
  EXPECT_NE(testing::slurp(dir.file("b.dbg")).find(" B "), std::string::npos);
}

}  // namespace
}  // namespace ovaro::ui
