#include "io/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace ovaro {
namespace {

TEST(NumberFormat, TableInDialogOrderWithDefaults) {
  struct Row {
    int id;
    std::string label, format;
    int width;
  };
  const std::vector<Row> expected = {
      {770, "00.", " %8.0f ", 10},
      {774, "00.0", " %9.1f ", 11},
      {778, "00.00", " %10.2f ", 12},
      {782, "00.000", " %11.3f ", 13},
      {784, "00.0000", " %12.4f ", 14},
      {785, "0.0000E+000", " %9.4E ", 13},
      {786, "0.00E+000", " %10.2E ", 13},
      {790, "0.000000E+000", " %12.6E ", 17},
      {795, "Floating or Exponential", " %12.4g ", 15},
  };
  const auto table = numberFormats();
  ASSERT_EQ(table.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    SCOPED_TRACE(expected[i].id);
    EXPECT_EQ(table[i].id, expected[i].id);
    EXPECT_EQ(table[i].label, expected[i].label);
    EXPECT_EQ(std::string(table[i].format), expected[i].format);
    EXPECT_EQ(table[i].width, expected[i].width);
    ASSERT_NE(findNumberFormat(expected[i].id), nullptr);
    EXPECT_EQ(findNumberFormat(expected[i].id)->id, expected[i].id);
    EXPECT_EQ(resultsNumberFormat(expected[i].id).id, expected[i].id);
    EXPECT_EQ(std::string(debugElementFormat(expected[i].id)), expected[i].format);
  }

  // No choice, or an id that is not a format (a neighbour in the id space included).
  for (int id : {0, 771, 800, -1}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(findNumberFormat(id), nullptr);
    EXPECT_EQ(resultsNumberFormat(id).id, 770);
    EXPECT_EQ(resultsNumberFormat(id).width, 10);
    EXPECT_EQ(std::string(debugElementFormat(id)), " %10.2f ");
  }
}

TEST(NumberFormat, FormatsOneValueWithItsBlanks) {
  const double v = 1234.5678;
  EXPECT_EQ(formatNumber(" %8.0f ", v), "     1235 ");
  EXPECT_EQ(formatNumber(" %9.1f ", v), "    1234.6 ");
  EXPECT_EQ(formatNumber(" %10.2f ", v), "    1234.57 ");
  EXPECT_EQ(formatNumber(" %11.3f ", v), "    1234.568 ");
  EXPECT_EQ(formatNumber(" %12.4f ", v), "    1234.5678 ");
  EXPECT_EQ(formatNumber(" %9.4E ", v), " 1.2346E+03 ");  // wider than its field
  EXPECT_EQ(formatNumber(" %10.2E ", v), "   1.23E+03 ");
  EXPECT_EQ(formatNumber(" %12.6E ", v), " 1.234568E+03 ");
  EXPECT_EQ(formatNumber(" %12.4g ", v), "         1235 ");
  EXPECT_EQ(formatNumber(" %8.0f ", std::numeric_limits<double>::infinity()), "      inf ");

  // The widest doubles: 309 integer digits plus ".0000" and the two blanks.
  const std::string big = formatNumber(" %12.4f ", 1e308);
  EXPECT_EQ(big.size(), 316u);
  EXPECT_EQ(big.substr(0, 2), " 1");
  EXPECT_EQ(big.substr(big.size() - 6), ".0000 ");
  EXPECT_EQ(big.find_first_not_of("0123456789", 1), 310u);
  EXPECT_EQ(formatNumber(" %12.4f ", -1.7976931348623157e308).size(), 317u);

  // Appending keeps what was there.
  std::string out = "ab";
  appendNumber(out, " %12.4f ", 1e308);
  appendNumber(out, "%10.4f ", 0.5);
  EXPECT_EQ(out.size(), 2u + 316u + 11u);
  EXPECT_EQ(out.substr(0, 4), "ab 1");
  EXPECT_EQ(out.substr(out.size() - 11), "    0.5000 ");
}

}  // namespace
}  // namespace ovaro
