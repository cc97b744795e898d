// The example table's text: what a row must hold, and the one problem a faulty table reports.
#include <gtest/gtest.h>

#include <string>

#include "model/example_table.h"

namespace ovaro {
namespace {

const std::string kHeader =
    "id\tfile\tdescription\tauthor\tcountry\tfunctional form\tstochastic terms\tsubject\n";
const std::string kRow =
    "3604\tgap1.ovi\tgap1 - A gap\tTeam\tHome\tRegular\tDeterministic\tPolicy\n";

TEST(ExampleTableText, RowsAreReadWithTheirCascadeEntries) {
  const ExampleTable t = ExampleTable::parse(
      "# comment\r\n\r\n" + kHeader + kRow + "3600\tb.ovi\tb - B\ta\tc\tf\ts\tsub\r\n", "t.tsv");
  ASSERT_EQ(t.rows().size(), 2u) << t.problem();
  EXPECT_EQ(t.problem(), "");
  EXPECT_EQ(t.row(3600)->subject, "sub");  // the carriage return is not part of the field
  EXPECT_EQ(t.row(3604)->*exampleCascades()[1].field, "Home");
  EXPECT_EQ(t.row(3608), nullptr);
}

struct Fault {
  std::string text;
  std::string problem;
};

class ExampleTableFault : public ::testing::TestWithParam<Fault> {};

TEST_P(ExampleTableFault, RefusesTheWholeTableNamingLineAndField) {
  const ExampleTable t = ExampleTable::parse(GetParam().text, "t.tsv");
  EXPECT_TRUE(t.rows().empty());
  EXPECT_EQ(t.problem(), GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ExampleTableFault,
    ::testing::Values(
        Fault{"id\tfile\n" + kRow,
              "t.tsv line 1: the first row must name the columns id, file, description, author, "
              "country, functional form, stochastic terms and subject, separated by tabs."},
        Fault{kHeader + "3600\ta.ovi\ta - A\n",
              "t.tsv line 2: the row has 3 fields separated by tabs, not 8."},
        Fault{kHeader + "3602\ta.ovi\ta - A\tx\tx\tx\tx\tx\n",
              "t.tsv line 2: field \"id\": \"3602\" is not an example id (3600 to 3836 in steps "
              "of 4)."},
        Fault{kHeader + "3840\ta.ovi\ta - A\tx\tx\tx\tx\tx\n",
              "t.tsv line 2: field \"id\": \"3840\" is not an example id (3600 to 3836 in steps "
              "of 4)."},
        Fault{kHeader + kRow + kRow,
              "t.tsv line 3: field \"id\": \"3604\" is used by an earlier row."},
        Fault{kHeader + "3600\tdir/a.ovi\ta - A\tx\tx\tx\tx\tx\n",
              "t.tsv line 2: field \"file\": \"dir/a.ovi\" is not a bare model file name ending "
              "in \".ovi\"."},
        Fault{kHeader + "3600\ta.ovi\tb - A\tx\tx\tx\tx\tx\n",
              "t.tsv line 2: field \"description\": \"b - A\" does not read \"a - \" and a "
              "title."},
        Fault{kHeader + "3600\ta.ovi\ta - A\tx\t\tx\tx\tx\n",
              "t.tsv line 2: field \"country\" is empty: every example stands under each "
              "cascade."},
        Fault{kHeader, "t.tsv line 1: the table lists no example."}));

TEST(ExampleTableText, AMissingFileIsNamed) {
  const ExampleTable t = ExampleTable::read("/nonexistent/examples.tsv");
  EXPECT_TRUE(t.rows().empty());
  EXPECT_EQ(t.problem(), "The example table /nonexistent/examples.tsv cannot be read.");
}

}  // namespace
}  // namespace ovaro
