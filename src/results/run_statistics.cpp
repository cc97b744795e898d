#include "results/run_statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ovaro {

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Continued fraction of the regularised incomplete beta function I_x(a, b), evaluated by the
// modified Lentz method; converges quickly for x < (a + 1) / (a + b + 2).
double betaFraction(double a, double b, double x) {
  constexpr double kTiny = 1e-300;
  constexpr double kEpsilon = 1e-15;
  double c = 1.0;
  double d = 1.0 - (a + b) * x / (a + 1.0);
  if (std::fabs(d) < kTiny) d = kTiny;
  d = 1.0 / d;
  double h = d;
  for (int m = 1; m <= 300; ++m) {
    const double m2 = 2.0 * m;
    double aa = m * (b - m) * x / ((a + m2 - 1.0) * (a + m2));
    d = 1.0 + aa * d;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = 1.0 + aa / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1.0 / d;
    h *= d * c;
    aa = -(a + m) * (a + b + m) * x / ((a + m2) * (a + m2 + 1.0));
    d = 1.0 + aa * d;
    if (std::fabs(d) < kTiny) d = kTiny;
    c = 1.0 + aa / c;
    if (std::fabs(c) < kTiny) c = kTiny;
    d = 1.0 / d;
    const double step = d * c;
    h *= step;
    if (std::fabs(step - 1.0) < kEpsilon) break;
  }
  return h;
}

// I_x(a, b) = x^a (1 - x)^b / (a B(a, b)) * fraction, using the symmetry I_x(a, b) =
// 1 - I_(1-x)(b, a) where the fraction would converge slowly.
double incompleteBeta(double a, double b, double x) {
  if (x <= 0.0) return 0.0;
  if (x >= 1.0) return 1.0;
  const double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                a * std::log(x) + b * std::log1p(-x));
  if (x < (a + 1.0) / (a + b + 2.0)) return front * betaFraction(a, b, x) / a;
  return 1.0 - front * betaFraction(b, a, 1.0 - x) / b;
}

double mean(std::span<const double> v) {
  double sum = 0.0;
  for (double x : v) sum += x;
  return v.empty() ? kNaN : sum / static_cast<double>(v.size());
}

// Standard error of the mean: sample standard deviation (N - 1) over sqrt N.
double standardError(std::span<const double> v, double m) {
  if (v.size() < 2) return kNaN;
  double ss = 0.0;
  for (double x : v) ss += (x - m) * (x - m);
  const double n = static_cast<double>(v.size());
  return std::sqrt(ss / (n - 1.0)) / std::sqrt(n);
}

std::vector<double> column(std::span<const std::array<double, 5>> rows, std::size_t k) {
  std::vector<double> v;
  v.reserve(rows.size());
  for (const auto& r : rows) v.push_back(r[k]);
  return v;
}

}  // namespace

double quantile(std::vector<double> values, double q) {
  // A run that failed leaves NaN in its path; it has no place in an ordering.
  std::erase_if(values, [](double v) { return std::isnan(v); });
  if (values.empty()) return kNaN;
  std::sort(values.begin(), values.end());
  const double h = static_cast<double>(values.size() - 1) * q;
  const auto lo = static_cast<std::size_t>(std::floor(h));
  if (lo + 1 >= values.size()) return values.back();
  return values[lo] + (h - static_cast<double>(lo)) * (values[lo + 1] - values[lo]);
}

double studentTCdf(double t, int df) {
  if (std::isnan(t) || df < 1) return kNaN;
  const double nu = df;
  const double tail = 0.5 * incompleteBeta(nu / 2.0, 0.5, nu / (nu + t * t));
  return t > 0 ? 1.0 - tail : tail;
}

double studentTQuantile(double p, int df) {
  if (!(p > 0.0 && p < 1.0) || df < 1) return kNaN;
  // The distribution function rises monotonically: bisect until the bracket stops shrinking.
  double lo = -1e8, hi = 1e8;
  for (int i = 0; i < 400 && hi - lo > 1e-13 * std::max(1.0, std::fabs(lo)); ++i) {
    const double mid = 0.5 * (lo + hi);
    (studentTCdf(mid, df) < p ? lo : hi) = mid;
  }
  return 0.5 * (lo + hi);
}

RunSpread spreadOverRuns(const ComparisonRuns& runs, bool states, int variable) {
  RunSpread spread;
  spread.runs = runs.runs;
  const int count = states ? runs.n : runs.m;
  const int last = states ? runs.nt : runs.nt - 1;
  if (runs.runs < 1 || variable < 0 || variable >= count || last < 0) return spread;
  const Mat& desired = states ? runs.xtws : runs.utws;
  for (int t = 0; t <= last; ++t) spread.desired.push_back(desired(variable + 1, t));
  for (std::size_t k = 0; k < kCompareMethods.size(); ++k) {
    if (!runs.selected[k]) continue;
    const Mat3& paths = states ? runs.xs[k] : runs.us[k];
    SpreadBand band;
    band.method = std::string(kCompareMethods[k]);
    std::vector<double> values(static_cast<std::size_t>(runs.runs));
    for (int t = 0; t <= last; ++t) {
      for (int r = 1; r <= runs.runs; ++r)
        values[static_cast<std::size_t>(r - 1)] = paths(variable + 1, t, r);
      band.median.push_back(quantile(values, 0.5));
      band.low.push_back(quantile(values, 0.1));
      band.high.push_back(quantile(values, 0.9));
    }
    spread.bands.push_back(std::move(band));
  }
  return spread;
}

CriterionSummary summarizeCriteria(std::span<const std::array<double, 5>> criteria,
                                   const std::array<bool, 5>& selected) {
  CriterionSummary s;
  s.runs = static_cast<int>(criteria.size());
  const int df = s.runs - 1;
  const double t975 = df >= 1 ? studentTQuantile(0.975, df) : kNaN;
  for (std::size_t k = 0; k < kCompareMethods.size(); ++k) {
    if (!selected[k]) continue;
    const std::vector<double> v = column(criteria, k);
    CriterionStats c;
    c.method = std::string(kCompareMethods[k]);
    c.mean = mean(v);
    c.standardError = standardError(v, c.mean);
    c.median = quantile(v, 0.5);
    c.q10 = quantile(v, 0.1);
    c.q90 = quantile(v, 0.9);
    s.methods.push_back(c);
  }
  for (std::size_t a = 0; a < kCompareMethods.size(); ++a) {
    for (std::size_t b = a + 1; b < kCompareMethods.size(); ++b) {
      if (!selected[a] || !selected[b]) continue;
      std::vector<double> d;
      for (const auto& row : criteria) d.push_back(row[a] - row[b]);
      CriterionDifference p;
      p.first = std::string(kCompareMethods[a]);
      p.second = std::string(kCompareMethods[b]);
      p.mean = mean(d);
      p.standardError = standardError(d, p.mean);
      p.low95 = p.mean - t975 * p.standardError;
      p.high95 = p.mean + t975 * p.standardError;
      // The same difference in every run (se 0) is certain: below, above, or a tie.
      if (df < 1)
        p.confidenceFirstLower = kNaN;
      else if (p.standardError > 0)
        p.confidenceFirstLower = studentTCdf(-p.mean / p.standardError, df);
      else
        p.confidenceFirstLower = p.mean < 0 ? 1.0 : p.mean > 0 ? 0.0 : kNaN;
      s.pairs.push_back(p);
    }
  }
  return s;
}

}  // namespace ovaro
