// The description window: what reaches the model, and what it refuses.
#include "ui/description_dialog.h"

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <tuple>

#include "model/model.h"
#include "ui/qt_app.h"

namespace ovaro::ui {
namespace {

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
