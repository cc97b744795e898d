// The example table's text: what a row must hold, and the one problem a faulty table reports.
#include "model/example_table.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_data.h"

namespace ovaro {
namespace {

TEST(ExampleTableText, RowsAreReadWithTheirCascadeEntries) {
  const ExampleTable t = ExampleTable::parse(
      "# comment\r\n\r\nid\tfile\tdescription\tauthor\tcountry\tfunctional form\tstochastic "
      "terms\tsubject\n3604\tgap1.ovi\tgap1 - A gap\tTeam\tHome\tRegular\tDeterministic\tPolicy\n"
      "3600\tb.ovi\tb - B\ta\tc\tf\ts\tsub\r\n",
      "t.tsv");
  ASSERT_EQ(t.rows().size(), 2u) << t.problem();
  EXPECT_EQ(t.problem(), "");
  EXPECT_EQ(t.row(3600)->subject, "sub");  // the carriage return is not part of the field
  EXPECT_EQ(t.row(3604)->*exampleCascades()[1].field, "Home");
  EXPECT_EQ(t.row(3608), nullptr);
}

// A faulty table is refused whole, its problem naming the line and the field.
TEST(ExampleTableText, AFaultyTableHasNoRowsAndNamesItsProblem) {
  const std::vector<std::string> entries = testing::dataLines("model_example_table_faults.txt");
  ASSERT_EQ(entries.size(), 18u);
  for (std::size_t i = 0; i < entries.size(); i += 2) {
    const ExampleTable t = ExampleTable::parse(entries[i], "t.tsv");
    EXPECT_TRUE(t.rows().empty()) << entries[i];
    EXPECT_EQ(t.problem(), entries[i + 1]);
  }
  EXPECT_EQ(ExampleTable::read("/nonexistent/examples.tsv").problem(),
            "The example table /nonexistent/examples.tsv cannot be read.");
}

}  // namespace
}  // namespace ovaro
