// The description window: what reaches the model, and what it refuses.
#include "ui/description_dialog.h"

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QTest>

#include "model/model.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

TEST(DescriptionDialog, OkStoresTextTheFileCanHoldAndRefusesTheRest) {
  test::qtApp();
  RecordingPrompter prompter;
  std::string description = "Output gap.";
  {
    DescriptionDialog d(description, prompter);
    EXPECT_EQ(d.editor()->toPlainText(), "Output gap.");
    d.editor()->setPlainText("Output gap,\nten years.");
    d.reject();
    EXPECT_EQ(description, "Output gap.");  // Cancel keeps the old text
  }
  {
    DescriptionDialog d(description, prompter);
    d.editor()->setPlainText("Output gap,\nten years.");
    d.accept();
    EXPECT_EQ(d.result(), QDialog::Accepted);
    EXPECT_EQ(description, "Output gap,\nten years.");
    EXPECT_TRUE(prompter.messages().empty());
  }
  {
    // The field separator would break the model file: refused, the dialog stays open.
    DescriptionDialog d(description, prompter);
    d.editor()->setPlainText("a~b");
    d.accept();
    EXPECT_NE(d.result(), QDialog::Accepted);
    EXPECT_EQ(description, "Output gap,\nten years.");
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages()[0].caption, "Description");
  }
  // The longest text that fits, and one byte more.
  const std::string longest(kDescriptionBytes - 1, 'x');
  EXPECT_EQ(descriptionProblem(longest), "");
  EXPECT_EQ(descriptionProblem(longest + "x"),
            "The description holds 32000 bytes; at most 31999 fit in the model file. Shorten it "
            "and press OK again.");
  EXPECT_NE(descriptionProblem("~"), "");
}

}  // namespace
}  // namespace ovaro::ui
