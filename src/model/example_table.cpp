#include "model/example_table.h"

#include <charconv>
#include <filesystem>
#include <system_error>

#include "model/safe_file.h"

namespace ovaro {

namespace {

namespace fs = std::filesystem;

constexpr ExampleCascade kCascades[] = {
    {"By Author", "author", &ExampleEntry::author},
    {"By Country", "country", &ExampleEntry::country},
    {"By Functional Form", "functional form", &ExampleEntry::functionalForm},
    {"By Stochastic Terms", "stochastic terms", &ExampleEntry::stochasticTerms},
    {"By Subject", "subject", &ExampleEntry::subject},
};

// The columns before the cascades'.
constexpr std::string_view kLeadingColumns[] = {"id", "file", "description"};
constexpr std::size_t kColumns = std::size(kLeadingColumns) + std::size(kCascades);

std::vector<std::string_view> splitTabs(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t start = 0;
  for (;;) {
    const std::size_t tab = line.find('\t', start);
    fields.push_back(line.substr(start, tab == std::string_view::npos ? tab : tab - start));
    if (tab == std::string_view::npos) return fields;
    start = tab + 1;
  }
}

std::string quoted(std::string_view s) {
  return "\"" + std::string(s) + "\"";
}

// What is wrong with one row, or empty. `ids` holds the ids of the rows before it.
std::string rowProblem(const std::vector<std::string_view>& f, const std::vector<int>& ids) {
  if (f.size() != kColumns)
    return "the row has " + std::to_string(f.size()) + " fields separated by tabs, not " +
           std::to_string(kColumns);
  int id = 0;
  const auto [end, ec] = std::from_chars(f[0].data(), f[0].data() + f[0].size(), id);
  if (ec != std::errc() || end != f[0].data() + f[0].size() || id < kFirstExampleId ||
      id > kLastExampleId || (id - kFirstExampleId) % kExampleIdStep != 0)
    return "field \"id\": " + quoted(f[0]) + " is not an example id (" +
           std::to_string(kFirstExampleId) + " to " + std::to_string(kLastExampleId) +
           " in steps of " + std::to_string(kExampleIdStep) + ")";
  for (int other : ids)
    if (other == id) return "field \"id\": " + quoted(f[0]) + " is used by an earlier row";
  const std::string_view file = f[1];
  if (file.size() <= 4 || !file.ends_with(".ovi") ||
      file.find_first_of("/\\") != std::string_view::npos)
    return "field \"file\": " + quoted(file) + " is not a bare model file name ending in \".ovi\"";
  const std::string stem(file.substr(0, file.size() - 4));
  if (!f[2].starts_with(stem + " - ") || f[2].size() == stem.size() + 3)
    return "field \"description\": " + quoted(f[2]) + " does not read \"" + stem +
           " - \" and a title";
  for (std::size_t k = 0; k < std::size(kCascades); ++k)
    if (f[std::size(kLeadingColumns) + k].empty())
      return "field " + quoted(kCascades[k].column) + " is empty: every example stands under " +
             "each cascade";
  return {};
}

}  // namespace

std::span<const ExampleCascade> exampleCascades() {
  return kCascades;
}

ExampleTable ExampleTable::parse(std::string text, const std::string& source) {
  ExampleTable table;
  table.text_ = std::make_unique<const std::string>(std::move(text));
  const std::string_view all = *table.text_;
  std::vector<int> ids;
  bool header = true;
  int lineNumber = 0;
  auto fail = [&](const std::string& what) {
    table.rows_.clear();
    table.problem_ = source + " line " + std::to_string(lineNumber) + ": " + what + ".";
    return std::move(table);
  };
  for (std::size_t start = 0; start < all.size();) {
    std::size_t end = all.find('\n', start);
    if (end == std::string_view::npos) end = all.size();
    std::string_view line = all.substr(start, end - start);
    start = end + 1;
    ++lineNumber;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.front() == '#') continue;
    const std::vector<std::string_view> fields = splitTabs(line);
    if (header) {
      // The heading row names the columns, so that a table edited by hand with a column moved
      // is refused rather than read into the wrong cascades.
      bool same = fields.size() == kColumns;
      for (std::size_t k = 0; same && k < kColumns; ++k)
        same = fields[k] == (k < std::size(kLeadingColumns)
                                 ? kLeadingColumns[k]
                                 : kCascades[k - std::size(kLeadingColumns)].column);
      if (!same)
        return fail(
            "the first row must name the columns id, file, description, author, country, "
            "functional form, stochastic terms and subject, separated by tabs");
      header = false;
      continue;
    }
    if (std::string problem = rowProblem(fields, ids); !problem.empty()) return fail(problem);
    ids.push_back(std::stoi(std::string(fields[0])));
    table.rows_.push_back(ExampleEntry{ids.back(), fields[1], fields[2], fields[3], fields[4],
                                       fields[5], fields[6], fields[7]});
  }
  if (table.rows_.empty()) return fail("the table lists no example");
  return table;
}

ExampleTable ExampleTable::read(const std::string& path) {
  std::string text;
  if (!readWholeFile(path, text)) {
    ExampleTable table;
    table.problem_ = "The example table " + path + " cannot be read.";
    return table;
  }
  ExampleTable table = parse(std::move(text), path);
  table.path_ = path;
  return table;
}

ExampleTable ExampleTable::find() {
  std::error_code ec;
  for (const std::string& candidate : exampleTableCandidates())
    if (fs::is_regular_file(candidate, ec)) return read(candidate);
  ExampleTable table;
  table.problem_ = "The example table " + std::string(kExampleTableName) +
                   " is not in the working directory nor in its \"examples\" folder.";
  return table;
}

const ExampleEntry* ExampleTable::row(int commandId) const {
  for (const ExampleEntry& e : rows_)
    if (e.commandId == commandId) return &e;
  return nullptr;
}

std::string ExampleTable::filePath(const ExampleEntry& entry) const {
  std::error_code ec;
  const fs::path bare(entry.fileName);
  if (fs::exists(bare, ec) || path_.empty()) return bare.string();
  const fs::path beside = fs::path(path_).parent_path() / bare;
  return fs::exists(beside, ec) ? beside.string() : bare.string();
}

std::vector<std::string> exampleTableCandidates() {
  const fs::path name(kExampleTableName);
  std::vector<std::string> places = {name.string(), (fs::path("examples") / name).string()};
#ifdef OVARO_EXAMPLES_DIR
  places.push_back((fs::path(OVARO_EXAMPLES_DIR) / name).string());
#endif
  return places;
}

const ExampleTable& exampleLibrary() {
  static const ExampleTable library = ExampleTable::find();
  return library;
}

std::span<const ExampleEntry> exampleTable() {
  return exampleLibrary().rows();
}

const ExampleEntry& defaultExample() {
  // Without a table the default example is still the file that `make run` opens.
  static constexpr ExampleEntry kFallback{
      3600, "track1.ovi", "track1 - One-state output-gap tracking", "Ovaro team", "", "", "", ""};
  for (const ExampleEntry& e : exampleTable())
    if (e.fileName == "track1.ovi") return e;
  return kFallback;
}

}  // namespace ovaro
