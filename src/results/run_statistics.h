// What the runs of a comparison say beyond their averages: the spread of a path over the runs,
// and how sure one can be that one method's criterion is below another's.
//
// Both read what the comparison kept of every run (ComparisonRuns in the results store): the true
// state and control paths and the criterion of each method in each run. Nothing is simulated or
// solved again.
//
// Spread. For every period, the median and the 10% and 90% quantiles of the variable over the
// runs, per method. Quantiles interpolate linearly between order statistics: the q-quantile of
// N sorted values v(0..N-1) is v(h) at h = (N - 1) q, interpolated between v(floor h) and
// v(floor h + 1).
//
// Criteria. Per method the mean, its standard error (sample standard deviation over sqrt N), the
// median and the 10% / 90% quantiles of the run criteria. Per pair of methods (first, second, in
// the order HCFR, CE, CEWO, OLF, OLIN) the runs are paired, since both methods met the same
// shocks in a run: d = criterion(first) - criterion(second) run by run, its mean, standard error
// and 95% interval mean +- t(0.975, N - 1) se, and the confidence that the first method's mean
// criterion is below the second's, P(T < -mean / se) for T Student-t with N - 1 degrees of
// freedom (one-sided). With fewer than two runs the error, interval and confidence are not
// defined (NaN).
#pragma once

#include <array>
#include <span>
#include <string>
#include <vector>

#include "results/results_store.h"

namespace ovaro {

// The q-quantile (0 <= q <= 1) of the values, NaNs left out; NaN for none.
double quantile(std::vector<double> values, double q);

// Student-t with `df` degrees of freedom (df >= 1): the distribution function, and its inverse.
double studentTCdf(double t, int df);
double studentTQuantile(double p, int df);

struct SpreadBand {
  std::string method;
  std::vector<double> median, low, high;  // 50%, 10%, 90% by period
};

struct RunSpread {
  int runs = 0;
  std::vector<SpreadBand> bands;  // one per compared method, in table order
  std::vector<double> desired;    // the desired path of the variable
};

// The spread of state (`states` true) or control `variable` (0-based) over the runs of each
// compared method. No bands when the comparison kept no runs or has no such variable.
RunSpread spreadOverRuns(const ComparisonRuns& runs, bool states, int variable);

struct CriterionStats {
  std::string method;
  double mean = 0, standardError = 0, median = 0, q10 = 0, q90 = 0;
};

struct CriterionDifference {
  std::string first, second;
  double mean = 0, standardError = 0, low95 = 0, high95 = 0;
  double confidenceFirstLower = 0;
};

struct CriterionSummary {
  int runs = 0;
  std::vector<CriterionStats> methods;
  std::vector<CriterionDifference> pairs;
};

// `criteria` holds one row per run, one column per Compare method; `selected` says which ran.
CriterionSummary summarizeCriteria(std::span<const std::array<double, 5>> criteria,
                                   const std::array<bool, 5>& selected);

}  // namespace ovaro
