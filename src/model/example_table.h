// The example library: model files shipped beside the program, named by a table that the
// Examples menu, the example browser and `ovaro-cli examples` all read. Each row holds the command
// id of its menu entry, the bare file name, a one-line description ("stem - title") and the entry
// under which each of the menu's five cascades lists it.
//
// The table is the tab-separated text file "examples.tsv". The program looks for it in the
// working directory, then in the working directory's "examples" folder, then in the examples
// folder of the checkout it was built from; the example files are looked up in the working
// directory first and then beside the table.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ovaro {

struct ExampleEntry {
  int commandId;                 // 3600..3836 in steps of 4
  std::string_view fileName;     // e.g. "track1.ovi"
  std::string_view description;  // e.g. "track1 - One-state output-gap tracking"
  std::string_view author;
  std::string_view country;
  std::string_view functionalForm;
  std::string_view stochasticTerms;
  std::string_view subject;
};

// The five cascades of File: Examples, in menu order, each with the row field it groups by.
struct ExampleCascade {
  std::string_view caption;  // "By Author", ...
  std::string_view column;   // the table's column heading, "author", ...
  std::string_view ExampleEntry::*field;
};
std::span<const ExampleCascade> exampleCascades();

inline constexpr std::string_view kExampleTableName = "examples.tsv";
inline constexpr int kFirstExampleId = 3600, kLastExampleId = 3836, kExampleIdStep = 4;

class ExampleTable {
 public:
  // Reads the table's text. `source` names it in the problem text. A table with any fault holds
  // no rows at all, so that a menu is never built from half a table.
  static ExampleTable parse(std::string text, const std::string& source);
  // Reads the file at `path`; the example files are then looked up beside it.
  static ExampleTable read(const std::string& path);
  // Reads the first table found where the program looks for it (see above).
  static ExampleTable find();

  std::span<const ExampleEntry> rows() const { return rows_; }
  // The row with this command id, or nullptr.
  const ExampleEntry* row(int commandId) const;
  // Why the table has no rows (which file, which line, which field); empty when it was read.
  const std::string& problem() const { return problem_; }
  // The file the rows came from; empty when none was found.
  const std::string& path() const { return path_; }
  // Where an example's file is: in the working directory when it is there, else beside the
  // table. The bare name when it is in neither, so that the caller's message names it.
  std::string filePath(const ExampleEntry& entry) const;

 private:
  std::unique_ptr<const std::string> text_;  // the rows' fields are views into it
  std::vector<ExampleEntry> rows_;
  std::string problem_;
  std::string path_;
};

// The places the program looks for the table, in order.
std::vector<std::string> exampleTableCandidates();

// The library as the program found it at its first use; it is read once.
const ExampleTable& exampleLibrary();
std::span<const ExampleEntry> exampleTable();
// The example that `make run` and first-time users start from.
const ExampleEntry& defaultExample();

}  // namespace ovaro
