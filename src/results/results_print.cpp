#include "results/results_print.h"

#include <stdexcept>
#include <string>

namespace ovaro {

namespace {

bool holds(const Mat& a, int rows, int lastPeriod) {
  if (rows <= 0 || lastPeriod < 0) return true;
  return a.rlo() <= 1 && a.rhi() >= rows && a.clo() <= 0 && a.chi() >= lastPeriod;
}

void requireShape(const Solution& s) {
  if (s.n < 0 || s.m < 0 || s.nt < 0 || !holds(s.xs, s.n, s.nt) || !holds(s.xtws, s.n, s.nt) ||
      !holds(s.us, s.m, s.nt - 1) || !holds(s.utws, s.m, s.nt - 1)) {
    throw std::invalid_argument("results print: the paths of \"" + s.method +
                                "\" do not hold its sizes");
  }
}

// u(t) for t < T; 0 in period T, where no control is chosen.
double controlAt(const Mat& u, int j, int t, int T) {
  return t < T ? u(j, t) : 0.0;
}

}  // namespace

Mat optimalAndDesiredTable(const Solution& s) {
  requireShape(s);
  const int T = s.nt;
  Mat table = mat2(1, 2 * (s.n + s.m), 0, T);
  for (int i = 1; i <= s.n; ++i) {
    for (int t = 0; t <= T; ++t) {
      table(2 * i - 1, t) = s.xs(i, t);
      table(2 * i, t) = s.xtws(i, t);
    }
  }
  for (int j = 1; j <= s.m; ++j) {
    const int row = 2 * s.n + 2 * j;
    for (int t = 0; t <= T; ++t) {
      table(row - 1, t) = controlAt(s.us, j, t, T);
      table(row, t) = controlAt(s.utws, j, t, T);
    }
  }
  return table;
}

Mat plainResultsTable(const Solution& s) {
  requireShape(s);
  const int T = s.nt;
  Mat table = mat2(1, s.n + s.m, 0, T);
  for (int i = 1; i <= s.n; ++i) {
    for (int t = 0; t <= T; ++t) table(i, t) = s.xs(i, t);
  }
  for (int j = 1; j <= s.m; ++j) {
    for (int t = 0; t <= T; ++t) table(s.n + j, t) = controlAt(s.us, j, t, T);
  }
  return table;
}

int printResultsToDebugFile(const Model& model, const Solution& solution, bool periodsAsRows,
                            DebugFile& file, Prompter& prompter) {
  requireShape(solution);
  const auto& words = model.display.words;
  const bool first = words[kResultsPrintFirstWord] == 1;
  const bool second = words[kResultsPrintSecondWord] == 1;
  const bool third = words[kResultsPrintThirdWord] == 1;
  const int T = solution.nt;
  const int rows = solution.n + solution.m;

  // The first option is not carried out in either orientation.
  if (first) prompter.inform(kResultsPreferenceMissing, "Results");

  if (second) {
    const Mat table = optimalAndDesiredTable(solution);
    if (!periodsAsRows) {
      if (file.dumpMatrix("resultsoptdes", 1, 2 * rows, 0, T, table) == 0) return 0;
    } else {
      Mat transposed = mat2(0, T, 1, 2 * rows);
      for (int r = 1; r <= 2 * rows; ++r) {
        for (int t = 0; t <= T; ++t) transposed(t, r) = table(r, t);
      }
      if (file.dumpMatrix("resultstransoptdes", 0, T, 1, 2 * rows, transposed) == 0) return 0;
    }
  }

  if (third) {
    if (!periodsAsRows) {
      if (file.dumpMatrix("results", 1, rows, 0, T, plainResultsTable(solution)) == 0) return 0;
    } else {
      prompter.inform(kResultsPreferenceMissing, "Results");
    }
  }
  return 1;
}

}  // namespace ovaro
