#include "io/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace ovaro {
namespace {

// Each choice in dialog order with its label, format, width, and 1234.5678 as it prints.
TEST(NumberFormat, TableInDialogOrderWithDefaults) {
  struct Row {
    int id;
    std::string label, format;
    int width;
    std::string printed;
  };
  const std::vector<Row> expected = {
      {770, "00.", " %8.0f ", 10, "     1235 "},
      {774, "00.0", " %9.1f ", 11, "    1234.6 "},
      {778, "00.00", " %10.2f ", 12, "    1234.57 "},
      {782, "00.000", " %11.3f ", 13, "    1234.568 "},
      {784, "00.0000", " %12.4f ", 14, "    1234.5678 "},
      {785, "0.0000E+000", " %9.4E ", 13, " 1.2346E+03 "},  // wider than its field
      {786, "0.00E+000", " %10.2E ", 13, "   1.23E+03 "},
      {790, "0.000000E+000", " %12.6E ", 17, " 1.234568E+03 "},
      {795, "Floating or Exponential", " %12.4g ", 15, "         1235 "},
  };
  const auto table = numberFormats();
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const Row& e = expected[i];
    SCOPED_TRACE(e.id);
    EXPECT_EQ(table[i].id, e.id);
    EXPECT_EQ(table[i].label, e.label);
    EXPECT_EQ(table[i].width, e.width);
    EXPECT_EQ(findNumberFormat(e.id), &table[i]);
    EXPECT_EQ(resultsNumberFormat(e.id).id, e.id);
    EXPECT_EQ(std::string(debugElementFormat(e.id)), e.format);
    EXPECT_EQ(formatNumber(table[i].format, 1234.5678), e.printed);
  }

  // No choice, or an id that is not a format (a neighbour in the id space included).
  for (int id : {0, 771, 800, -1}) {
    EXPECT_EQ(findNumberFormat(id), nullptr) << id;
    EXPECT_EQ(resultsNumberFormat(id).id, 770) << id;
    EXPECT_EQ(std::string(debugElementFormat(id)), " %10.2f ") << id;
  }
}

// The widest doubles print whole: 309 integer digits plus ".0000" and the two blanks; appending
// keeps what was there.
TEST(NumberFormat, TheWidestValuesAndAppending) {
  EXPECT_EQ(formatNumber(" %8.0f ", std::numeric_limits<double>::infinity()), "      inf ");
  const std::string big = formatNumber(" %12.4f ", 1e308);
  EXPECT_EQ(big.size(), 316u);
  EXPECT_EQ(big.find_first_not_of("0123456789", 1), 310u);
  EXPECT_EQ(formatNumber(" %12.4f ", -1.7976931348623157e308).size(), 317u);
  std::string out = "ab";
  appendNumber(out, " %12.4f ", 1e308);
  appendNumber(out, "%10.4f ", 0.5);
  EXPECT_EQ(out, "ab" + big + "    0.5000 ");
}

}  // namespace
}  // namespace ovaro
