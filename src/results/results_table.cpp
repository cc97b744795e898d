#include "results/results_table.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "io/number_format.h"
#include "model/options.h"
#include "results/display_selection.h"

namespace ovaro {

namespace {

constexpr int kPeriodsPerGroup = 5;  // a blank line (column) after every five periods

std::string trimmed(std::string_view s) {
  const std::size_t first = s.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  const std::size_t last = s.find_last_not_of(' ');
  return std::string(s.substr(first, last - first + 1));
}

std::string acronymAt(const LabelTable& table, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= table.acronyms.size()) return {};
  return trimmed(table.acronyms[static_cast<std::size_t>(index)]);
}

// The heading of period t: its acronym, or its number in the Model's own count when the acronym
// is blank.
std::string periodHeading(const Model& model, int t) {
  std::string acronym = acronymAt(model.periods, t);
  if (!acronym.empty()) return acronym;
  return std::to_string(model.dims.initialPeriod.value + t);
}

// Whether the array holds rows 1..rows and periods 0..lastPeriod (trivially so when either range
// is empty).
bool covers(const Mat& a, int rows, int lastPeriod) {
  if (rows <= 0 || lastPeriod < 0) return true;
  return a.rlo() <= 1 && a.rhi() >= rows && a.clo() <= 0 && a.chi() >= lastPeriod;
}

bool fits(const Solution& s, int n, int m, int T) {
  return s.n == n && s.m == m && s.nt == T && covers(s.xs, n, T) && covers(s.xtws, n, T) &&
         covers(s.us, m, T - 1) && covers(s.utws, m, T - 1);
}

bool fits(const std::optional<ParameterPaths>& p, int np, int T) {
  return p.has_value() && covers(p->estimates, np, T) && covers(p->trueValues, np, T);
}

// Body line of period t in the rows orientation: a blank line after every five periods.
int periodLine(int t) {
  return t + t / kPeriodsPerGroup;
}

// The table with periods as rows, from which the columns orientation is transposed.
struct Grid {
  int columns = 0;
  int lines = 0;  // body lines the blocks take, the "True Value" line included
  std::vector<TableCell> headings;
  std::vector<TableCell> rowHeadings;
  std::vector<TableCell> values;
  // Per value column, what names it as a line of the transposed table: the variable and its
  // column label ("S1 HCFR"), or a block title over the empty column before a block.
  std::vector<std::string> columnNames;
};

struct Shown {
  std::string_view label;
  const StoredResult* result;
};

class GridBuilder {
 public:
  GridBuilder(const Model& model, std::vector<Shown> shown, bool desired, bool parameters,
              const NumberFormat& format)
      : model_(model),
        shown_(std::move(shown)),
        k_(static_cast<int>(shown_.size())),
        desired_(desired),
        parameters_(parameters),
        policyYes_(model.flags.policyToParam == opt::kPolicyYes),
        format_(format),
        T_(model.dims.ntMinus1.value) {}

  Grid build() {
    grid_.headings.push_back({0, kRowHeadingSlot, 1, "States"});
    variableBlock(model_.dims.n.value, model_.states, true);
    gapColumn("Controls");
    variableBlock(model_.dims.m.value, model_.controls, false);
    if (parameters_) {
      gapColumn("Parameters");
      parameterBlock();
    }
    for (int t = 0; t <= T_; ++t) {
      grid_.rowHeadings.push_back({periodLine(t), kRowHeadingSlot, 1, periodHeading(model_, t)});
    }
    grid_.lines = std::max(grid_.lines, periodLine(T_) + 1);
    return std::move(grid_);
  }

 private:
  // The label cell of heading line 1 over method `method`'s column.
  std::string methodCell(int method) const {
    if (k_ > 1) return std::string(shown_[static_cast<std::size_t>(method)].label);
    return desired_ ? " opt" : "  ";
  }

  void value(int line, int column, double v) {
    std::string text;
    appendNumber(text, format_.format, v);
    grid_.values.push_back({line, column, 1, std::move(text)});
  }

  void nameColumn(int column, std::string name) {
    if (grid_.columnNames.size() <= static_cast<std::size_t>(column)) {
      grid_.columnNames.resize(static_cast<std::size_t>(column) + 1);
    }
    grid_.columnNames[static_cast<std::size_t>(column)] = std::move(name);
  }

  static std::string joined(const std::string& acronym, std::string_view cell) {
    std::string label = trimmed(cell);
    if (acronym.empty()) return label;
    if (label.empty()) return acronym;
    return acronym + " " + label;
  }

  void gapColumn(const char* title) {
    grid_.headings.push_back({0, grid_.columns, 1, title});
    nameColumn(grid_.columns, title);
    ++grid_.columns;
  }

  // States (periods 0..T) or controls (periods 0..T-1): per variable k method columns, then the
  // desired column.
  void variableBlock(int count, const LabelTable& labels, bool states) {
    const int group = k_ + (desired_ ? 1 : 0);
    const int lastPeriod = states ? T_ : T_ - 1;
    for (int i = 1; i <= count; ++i) {
      const int first = grid_.columns;
      const std::string acronym = acronymAt(labels, i - 1);
      grid_.headings.push_back({0, first, group, " " + acronym + " "});
      for (int method = 0; method < k_; ++method) {
        const Solution& s = shown_[static_cast<std::size_t>(method)].result->solution;
        const std::string cell = methodCell(method);
        grid_.headings.push_back({1, first + method, 1, cell});
        nameColumn(first + method, joined(acronym, cell));
        for (int t = 0; t <= lastPeriod; ++t) {
          value(periodLine(t), first + method, states ? s.xs(i, t) : s.us(i, t));
        }
      }
      if (desired_) {
        // The desired paths are the Model's, the same for every method: the first one's are shown.
        const Solution& s = shown_.front().result->solution;
        grid_.headings.push_back({1, first + k_, 1, "des"});
        nameColumn(first + k_, joined(acronym, "des"));
        for (int t = 0; t <= lastPeriod; ++t) {
          value(periodLine(t), first + k_, states ? s.xtws(i, t) : s.utws(i, t));
        }
      }
      grid_.columns += group;
    }
  }

  // Per parameter and method the estimate, followed by the true value when the policy affects
  // the parameters; otherwise one "True Value" line below the rows with each method's constant
  // true value under its estimates.
  void parameterBlock() {
    const int np = model_.dims.np.value;
    const int step = policyYes_ ? 2 : 1;
    const int trueLine = periodLine(T_ + 1);  // the line after the last period and its blank
    for (int i = 1; i <= np; ++i) {
      const int first = grid_.columns;
      const std::string acronym = acronymAt(model_.parameters, i - 1);
      grid_.headings.push_back({0, first, k_ * step, " " + acronym + " "});
      for (int method = 0; method < k_; ++method) {
        const ParameterPaths& p = *shown_[static_cast<std::size_t>(method)].result->parameters;
        const int column = first + method * step;
        const std::string cell = methodCell(method);
        grid_.headings.push_back({1, column, 1, cell});
        nameColumn(column, joined(acronym, cell));
        for (int t = 0; t <= T_; ++t) value(periodLine(t), column, p.estimates(i, t));
        if (policyYes_) {
          grid_.headings.push_back({1, column + 1, 1, "true"});
          nameColumn(column + 1, joined(acronym, joined(trimmed(cell), "true")));
          for (int t = 0; t <= T_; ++t) value(periodLine(t), column + 1, p.trueValues(i, t));
        } else {
          value(trueLine, column, p.trueValues(i, 0));
        }
      }
      grid_.columns += k_ * step;
    }
    if (!policyYes_ && np > 0) {
      grid_.rowHeadings.push_back({trueLine, kRowHeadingSlot, 1, "True Value"});
      grid_.lines = std::max(grid_.lines, trueLine + 1);
    }
  }

  const Model& model_;
  std::vector<Shown> shown_;
  int k_;
  bool desired_;
  bool parameters_;
  bool policyYes_;
  const NumberFormat& format_;
  int T_;
  Grid grid_;
};

void addCriteria(ResultsTable& table, const std::vector<Shown>& shown, int blockLines,
                 const NumberFormat& format) {
  // Two lines below the lowest block: one blank line between.
  int line = blockLines + 1;
  for (const Shown& s : shown) {
    CriterionLine c;
    c.line = line++;
    c.label = "  Criterion " + std::string(s.label) + " =";
    appendNumber(c.value, format.format, s.result->solution.criterion);
    table.criteria.push_back(std::move(c));
  }
  table.lineCount = line;
}

int rowHeadingWidth(const ResultsTable& table) {
  std::size_t widest = 0;
  for (const TableCell& c : table.rowHeadings) widest = std::max(widest, c.text.size());
  for (const TableCell& c : table.headings) {
    if (c.column == kRowHeadingSlot) widest = std::max(widest, c.text.size());
  }
  return std::max(kMinRowHeadingWidth, static_cast<int>(widest) + 1);
}

ResultsTable rowsTable(Grid grid) {
  ResultsTable table;
  table.periodsAsRows = true;
  table.columnCount = grid.columns;
  table.headings = std::move(grid.headings);
  table.rowHeadings = std::move(grid.rowHeadings);
  table.values = std::move(grid.values);
  return table;
}

// Cell (line L, column C) of the rows grid becomes cell (line C + 1, column L); line 0 is the
// "States" line.
ResultsTable columnsTable(const Model& model, Grid grid) {
  ResultsTable table;
  table.periodsAsRows = false;
  table.headings.push_back({0, kRowHeadingSlot, 1, "Time Periods"});
  table.headings.push_back({1, kRowHeadingSlot, 1, "Time"});
  for (const TableCell& c : grid.rowHeadings) {
    table.headings.push_back({0, c.line, 1, c.text == "True Value" ? c.text : " " + c.text + " "});
  }
  for (int t = 0; t <= model.dims.ntMinus1.value; ++t) {
    // Built by appending: GCC 12 warns falsely (-Wrestrict) on " " + std::to_string(t).
    std::string text = " ";
    text += std::to_string(t);
    text += ' ';
    table.headings.push_back({1, periodLine(t), 1, std::move(text)});
  }
  table.rowHeadings.push_back({0, kRowHeadingSlot, 1, "States"});
  for (std::size_t c = 0; c < grid.columnNames.size(); ++c) {
    if (grid.columnNames[c].empty()) continue;
    table.rowHeadings.push_back({static_cast<int>(c) + 1, kRowHeadingSlot, 1, grid.columnNames[c]});
  }
  table.values.reserve(grid.values.size());
  for (TableCell& c : grid.values) {
    table.values.push_back({c.column + 1, c.line, 1, std::move(c.text)});
  }
  table.columnCount = grid.lines;
  return table;
}

}  // namespace

std::optional<ResultsTable> layoutResultsTable(const Model& model, const ResultsStore& store,
                                               int formatId) {
  const DisplayEntry* entry = findDisplay(store.display.selector);
  if (entry == nullptr) return std::nullopt;
  const int n = model.dims.n.value;
  const int m = model.dims.m.value;
  const int np = model.dims.np.value;
  const int T = model.dims.ntMinus1.value;
  if (T < 0 || n < 0 || m < 0) return std::nullopt;

  std::vector<Shown> shown;
  for (int i = 0; i < entry->k; ++i) {
    const std::string_view label = entry->labels[static_cast<std::size_t>(i)];
    const StoredResult* r = store.find(label);
    if (r == nullptr || !fits(r->solution, n, m, T)) return std::nullopt;
    shown.push_back({label, r});
  }

  // Parameter paths exist only for the Monte Carlo methods, and only once a comparison has
  // filled them; without them the parameters block is left out rather than shown empty.
  bool parameters = store.display.parameters && entry->id != kDisplayQlp &&
                    entry->id != kDisplayOlfWithoutUpdate && np > 0;
  for (const Shown& s : shown) parameters = parameters && fits(s.result->parameters, np, T);

  const NumberFormat& format = resultsNumberFormat(formatId);
  Grid grid = GridBuilder(model, shown, store.display.desiredPaths, parameters, format).build();

  const bool rows = !store.display.periodsAsColumns;
  const int blockLines = rows ? grid.lines : grid.columns + 1;
  ResultsTable table = rows ? rowsTable(std::move(grid)) : columnsTable(model, std::move(grid));
  table.columnWidth = format.width;
  addCriteria(table, shown, blockLines, format);
  table.rowHeadingWidth = rowHeadingWidth(table);
  return table;
}

std::string renderTableText(const ResultsTable& table) {
  struct Placed {
    std::size_t position;
    const std::string* text;
  };
  const int headingLines = 2;
  std::vector<std::vector<Placed>> lines(static_cast<std::size_t>(headingLines + table.lineCount));
  const auto at = [&](int column) {
    if (column == kRowHeadingSlot) return std::size_t{0};
    return static_cast<std::size_t>(table.rowHeadingWidth) +
           static_cast<std::size_t>(column) * static_cast<std::size_t>(table.columnWidth);
  };
  const auto place = [&](int line, std::size_t position, const std::string& text) {
    if (line < 0 || line >= static_cast<int>(lines.size())) return;
    lines[static_cast<std::size_t>(line)].push_back({position, &text});
  };
  for (const TableCell& c : table.headings) place(c.line, at(c.column), c.text);
  for (const TableCell& c : table.rowHeadings) place(headingLines + c.line, at(c.column), c.text);
  for (const TableCell& c : table.values) place(headingLines + c.line, at(c.column), c.text);
  for (const CriterionLine& c : table.criteria) {
    place(headingLines + c.line, 0, c.label);
    place(headingLines + c.line, static_cast<std::size_t>(kCriterionValueOffset), c.value);
  }

  std::string out;
  std::string line;
  for (std::vector<Placed>& cells : lines) {
    std::stable_sort(cells.begin(), cells.end(),
                     [](const Placed& a, const Placed& b) { return a.position < b.position; });
    line.clear();
    for (const Placed& c : cells) {
      if (line.size() < c.position) {
        line.append(c.position - line.size(), ' ');
      } else if (!line.empty() && line.back() != ' ') {
        line.push_back(' ');  // the cell before ran over: keep the two apart
      }
      line += *c.text;
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    out += line;
    out.push_back('\n');
  }
  return out;
}

std::string renderResultsText(const Model& model, const ResultsStore& store, int formatId) {
  const std::optional<ResultsTable> table = layoutResultsTable(model, store, formatId);
  return table ? renderTableText(*table) : std::string();
}

}  // namespace ovaro
