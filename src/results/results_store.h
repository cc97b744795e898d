// The results store: the solutions a session has made and how the user wants them shown.
//
// Every solve leaves its paths here under its method name: QLP and OLF without updating leave
// one deterministic solution each, a Monte Carlo comparison one per compared method (HCFR, CE,
// CEWO, OLF, OLIN), with the estimated and true paths of the uncertain parameters beside the
// state and control paths. A solution stays until the next solve of the same method replaces it
// or the store is cleared; the tables and plots read it from here.
//
// Beside the solutions the store keeps what decides which table is shown: the run flags that the
// display selection after a solve reads, the display selector itself, and the display
// preferences (desired paths, parameters, orientation). The number format lives in the
// Workbench, where the debug file also reads it; the table functions take its id as an argument.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "numeric/arrays.h"
#include "solve/solution.h"

namespace ovaro {

// The method names in the order of every per-method table: the two single solves, then the five
// Compare methods.
inline constexpr std::array<std::string_view, 7> kResultMethods{"QLP",  "OLFwo", "HCFR", "CE",
                                                                "CEWO", "OLF",   "OLIN"};
// The five Compare methods, in the order of their run flags.
inline constexpr std::array<std::string_view, 5> kCompareMethods{"HCFR", "CE", "CEWO", "OLF",
                                                                 "OLIN"};

// Position of a method name in kResultMethods, or -1 for a name that is not one of them.
int resultMethodIndex(std::string_view method);

// The paths of the uncertain parameters in one Monte Carlo solution, both np x 0..T: the
// controller's estimate of each parameter at every period and the parameter's true value.
struct ParameterPaths {
  Mat estimates;
  Mat trueValues;
};

// One stored solution: the paths and criterion, and for the Monte Carlo methods the parameter
// paths (absent for QLP and OLF without updating, and until the comparison fills them).
struct StoredResult {
  Solution solution;
  std::optional<ParameterPaths> parameters;
};

// What the last comparison kept of every run, per Compare method (in the order of
// kCompareMethods; arrays of the methods that did not run stay empty): the true state paths
// (n x 0..T x runs 1..N) and control paths (m x 0..T-1 x runs), the criterion of every run, and
// the desired paths that all runs tracked. The spread over runs and the criterion summary are
// computed from these.
struct ComparisonRuns {
  int runs = 0;
  int n = 0, m = 0, nt = 0;  // nt: the last period T
  std::array<bool, 5> selected{};
  std::array<Mat3, 5> xs;
  std::array<Mat3, 5> us;
  std::vector<std::array<double, 5>> criteria;  // by run, then method
  Mat xtws, utws;
};

// Which solves have run, as the display selection after a solve reads them.
struct RunFlags {
  bool qlp = false;               // QLP ran
  bool olfWithoutUpdate = false;  // OLF without updating ran
  // The Compare method choice: HCFR, CE, CEWO, OLF, OLIN, in the order of kCompareMethods.
  std::array<bool, 5> compare{};
  friend bool operator==(const RunFlags&, const RunFlags&) = default;
};

// How the results are shown. The selector is 0 (nothing chosen) or one of the display ids
// 3300..3364 (display_selection.h); exactly one orientation flag is set.
struct DisplayPreferences {
  int selector = 0;
  bool desiredPaths = false;  // "Desired States and Controls" / "Desired Paths"
  bool parameters = false;    // "Parameters"
  bool periodsAsRows = true;
  bool periodsAsColumns = false;
  friend bool operator==(const DisplayPreferences&, const DisplayPreferences&) = default;
};

class ResultsStore {
 public:
  // Stores a solution under its method name (`result.solution.method`), replacing any solution
  // held for that method. Throws std::invalid_argument when the name is not a result method.
  void store(StoredResult result);
  // The solution stored for a method, or nullptr when there is none (or the name is unknown).
  const StoredResult* find(std::string_view method) const;
  // Forgets every stored solution and every run flag. The display preferences are the user's
  // choice and stay as they are.
  void clear();

  RunFlags ran;
  DisplayPreferences display;
  // The statistics of the last Monte Carlo comparison over its runs, by name ("AvgXsCe",
  // "VarAvgUsOlf", "thetamean", ...).
  std::map<std::string, Mat> statistics;
  // Every run of the last comparison; absent until one has run.
  std::optional<ComparisonRuns> comparison;

 private:
  std::array<std::optional<StoredResult>, kResultMethods.size()> results_;
};

}  // namespace ovaro
