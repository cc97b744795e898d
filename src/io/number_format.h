// The number formats shared by the result tables and the debug print file.
//
// The Preferences for Results dialog offers nine formats as a radio group whose button ids are
// stored as the user's choice (770 ... 795); the result tables print every value with the chosen
// printf format and space their columns by its width, and the debug file prints the elements of
// its double matrices and vectors with the same format. Each format carries one leading and one
// trailing blank, so consecutive values never run together even when a number overflows its field.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace ovaro {

struct NumberFormat {
  int id;                  // radio button id, stored as the preference
  std::string_view label;  // text of the radio button
  const char* format;      // printf format of one double, blanks included
  int width;               // column width in characters
};

// The results default: what the tables use until a format is chosen.
inline constexpr int kDefaultResultsFormatId = 770;
// The debug element format before any choice is made (it is not one of the nine).
inline constexpr const char* kUnchosenDebugFormat = " %10.2f ";

// The nine formats in dialog order.
std::span<const NumberFormat> numberFormats();
// The format with this id, or nullptr when the id is not one of the nine.
const NumberFormat* findNumberFormat(int id);
// The format the result tables use for a stored choice: 0 or an unknown id give 770.
const NumberFormat& resultsNumberFormat(int id);
// The element format of the debug dumps for a stored choice: 0 or an unknown id give
// " %10.2f ".
const char* debugElementFormat(int id);

// Appends `value` printed with `format`, which must hold exactly one double conversion (one of
// the formats above or a fixed debug format such as "%10.4f "). Any double fits, however wide:
// 1e308 printed with " %12.4f " is 316 characters long.
void appendNumber(std::string& out, const char* format, double value);
// The same, as a new string.
std::string formatNumber(const char* format, double value);
// A labelled value of the debug and plot texts: `format` holds a %s for `label` and then one
// conversion for the value (%d for the int, a double conversion for the double), e.g.
// "\r\n\r\n%s%d". The text is as long as the format makes it.
std::string formatLabelled(const char* format, const char* label, int value);
std::string formatLabelled(const char* format, const char* label, double value);

}  // namespace ovaro
