#include "stoch/compare.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "io/number_format.h"
#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/forward.h"
#include "solve/model_input.h"
#include "solve/olf.h"
#include "solve/qlp.h"
#include "solve/system_forms.h"
#include "stoch/kalman.h"
#include "stoch/monte_carlo_stats.h"
#include "stoch/one_period.h"
#include "stoch/run_distributor.h"

namespace ovaro {

void countLowestCriterion(const MethodSelection& sel, const std::array<double, kMethodCount>& c,
                          std::array<unsigned, kMethodCount>& counts) {
  auto only = [&](std::initializer_list<int> on) {
    MethodSelection want{};
    for (int i : on) want[static_cast<std::size_t>(i)] = true;
    return want == sel;
  };
  auto add = [&](int i) { ++counts[static_cast<std::size_t>(i)]; };
  const double cH = c[kHcfr], cCE = c[kCe], cW = c[kCeWo], cO = c[kOlf], cI = c[kOlIn];
  // Three methods: every method that ties for the lowest is counted.
  auto three = [&](int a, int b, int d) {
    const double ca = c[static_cast<std::size_t>(a)], cb = c[static_cast<std::size_t>(b)],
                 cd = c[static_cast<std::size_t>(d)];
    if (ca <= cb && ca <= cd) add(a);
    if (cb <= ca && cb <= cd) add(b);
    if (cd <= ca && cd <= cb) add(d);
  };
  // Only these selections are counted; any other leaves the counts alone.
  if (only({kHcfr, kCe})) {
    add(cH > cCE ? kCe : kHcfr);
  } else if (only({kCe, kCeWo})) {
    add(cCE <= cW ? kCe : kCeWo);
  } else if (only({kCe, kOlf})) {
    add(cCE > cO ? kOlf : kCe);
  } else if (only({kCe, kOlIn})) {
    add(cCE > cI ? kOlIn : kCe);
  } else if (only({kCeWo, kOlf})) {
    add(cW <= cO ? kCeWo : kOlf);
  } else if (only({kOlf, kOlIn})) {
    add(cO > cI ? kOlIn : kOlf);
  } else if (only({kHcfr, kOlf})) {
    add(cH > cO ? kOlf : kHcfr);
  } else if (only({kHcfr, kCe, kOlf})) {
    three(kHcfr, kCe, kOlf);
  } else if (only({kCe, kOlf, kOlIn})) {
    three(kCe, kOlf, kOlIn);
  } else if (only({kCeWo, kOlf, kOlIn})) {
    three(kCeWo, kOlf, kOlIn);
  }
}

namespace {

// Everything the runs read that does not change from run to run.
struct CompareSetup {
  int n = 0, m = 0, l = 0, nt = 0, np = 0, ny = 0;
  int policy = 0;  // 1 with the policy-to-parameter effect
  SystemArrays sys;
  CriterionArrays crit;
  IMat ithn;
  UncertainParameters par;  // occupancy tables; sitt is replaced by each period's estimate
  Mat3 ath, bth, cth;
  Mat theta0, sitt0, q, d, h, sixx0, sitx0, r, gam, npolicy, hcfrG, hcfrg;
  FeedbackRule hcfrRule;         // the handcrafted rule in every period, for HCFR's projections
  Mat atrue0, btrue0, ctruetv0;  // the true system at theta0
  ForwardContext forwardBase;
};

// One run of one method: the true economy steered from the run's random draws.
struct RunFlags {
  bool forwardFailure = false;
};

int runMethod(int method, int run, const CompareSetup& s, const RandomTerms& terms,
              PeriodContext& pctx, RunFlags& flags, Prompter& prompter, const SolveTrace& trace,
              RunPaths& out) {
  const int n = s.n, m = s.m, nt = s.nt, np = s.np, ny = s.ny;
  const bool hcfr = method == kHcfr;
  const bool olfLike = method == kOlf || method == kOlIn;
  std::string routine = hcfr ? "CompareHcfr" : olfLike ? "CompareOlf" : "CompareCe";
  if (method == kCeWo) routine += " for CeWo";
  if (method == kOlIn) routine += " for OlfIn";
  const std::string in = " in " + routine;

  // The filter's estimates at (k|k), (k+1|k) and (k+1|k+1).
  FilterMoments kk(n, np), k1k(n, np), k1k1(n, np);
  mmov(n, n, s.sixx0, kk.sixx);
  mmovsub(1, np, 1, n, s.sitx0, kk.sitx);
  mmov(np, np, s.sitt0, kk.sitt);
  mmov(n, 1, terms.x0random, kk.xh);
  mmov(np, 1, terms.thetarandom, kk.th);
  if (trace.on(SolveTopic::FilterCovariancesFinal) || trace.on(SolveTopic::FilterMeansFinal)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("initial sixxkk" + in, 1, n, 1, n, kk.sixx);
    f.dumpMatrix("initial sitxkk" + in, 1, np, 1, n, kk.sitx);
    f.dumpMatrix("initial sittkk" + in, 1, np, 1, np, kk.sitt);
    f.dumpMatrix("initial xhkk" + in, 1, n, 1, 1, kk.xh);
    f.dumpMatrix("initial thkk" + in, 1, np, 1, 1, kk.th);
  }

  out.xs = mat2(1, n, 0, nt);
  out.us = mat2(1, m, 0, nt - 1);
  out.thetas = mat2(1, np, 0, nt);
  out.thetatrue = mat2(1, np, 0, nt);
  vcolset(n, 0, s.crit.x0, out.xs);
  vcolset(np, 0, s.theta0, out.thetatrue);
  vcolset(np, 0, kk.th, out.thetas);

  Mat atrue = mat2(1, n, 1, n), btrue = mat2(1, n, 1, m), ctruetv = mat2(1, n, 0, nt - 1);
  RestoreA(n, m, nt, s.atrue0, s.btrue0, s.ctruetv0, atrue, btrue, ctruetv);
  // The run's true economy; its A, B and c move with the true parameters period by period.
  const TrueEconomy economy{n, m, nt, ny, atrue, btrue, ctruetv, s.h, terms.xsis, terms.zetas};
  const ParameterDrift drift{np, m, nt, s.policy, s.npolicy, terms.etas};
  Mat a = mat2(1, n, 1, n), b = mat2(1, n, 1, m), cs = mat2(1, n, 0, nt - 1);
  RestoreA(n, m, nt, s.sys.a, s.sys.b, s.sys.cs, a, b, cs);
  // What the forward-variable iteration projects: the run's estimates of A, B and c.
  const ProjectionSystem projection{n, m, nt, ny, a, b, cs, s.sys.d1, s.sys.d2, s.sys.d3, s.h};

  Mat g = mat2(1, m, 1, n), glc = mat2(1, m, 1, 1), uk = mat2(1, m, 1, 1);
  Mat xk1 = mat2(1, n, 1, 1), y = mat2(1, ny, 1, 1);
  Mat xhat = mat2(1, n, 1, 1), xk = mat2(1, n, 1, 1), ck = mat2(1, n, 1, 1);
  UncertainParameters par = s.par;
  // The scratch of the per-period re-solves and of the filter, made once for the run.
  OlfWork solveWork(n, m);
  FilterWork filterWork(n, m, np, ny);

  // Forward variables: the expected path of the iteration, kept from period to period.
  const bool forwardModel = s.sys.forward != 0;
  const int lastCol = nt + 3;
  Mat xsiter = mat2(1, n, 0, lastCol), xsiterStore = mat2(1, n, 0, lastCol);
  Mat usiter = mat2(1, m, 0, nt - 1), usOld = mat2(1, m, 0, nt - 1);
  Mat csAdjusted = mat2(1, n, 0, nt - 1), csUsed = mat2(1, n, 0, nt - 1);
  ForwardContext fctx = s.forwardBase;
  fctx.monteCarlo = true;
  fctx.method = kMethodNames[static_cast<std::size_t>(method)];
  FeedbackRule rule = makeFeedbackRule(n, m, nt);
  LeadTerms lead = makeLeadTerms(n);

  for (int k = 0; k <= nt - 1; ++k) {
    if (trace.on(SolveTopic::RunHeadings))
      trace.file().write(
          formatLabelled("\r\n\r\n%s%d", (" " + routine + " - major time loop   k = ").c_str(), k));
    MapThetaToAbc(n, m, nt, np, s.ithn, kk.th, a, b, cs, prompter, trace);
    mmov(n, 1, kk.xh, xhat);
    if (hcfr) {
      mmov(m, n, s.hcfrG, g);
      mmov(m, 1, s.hcfrg, glc);
    } else if (!forwardModel) {
      if (olfLike) {
        mmov(np, np, kk.sitt, par.sitt);
        CompKpg(n, m, nt, k, a, b, cs, s.crit, par, solveWork, g, glc, trace);
      } else {
        CompKpgCe(n, m, nt, k, a, b, cs, s.crit, solveWork, g, glc, trace);
      }
    }
    if (forwardModel) {
      // The forward-variable iteration from this period on. HCFR re-solves nothing: its expected
      // path is the one its own fixed rule projects, iterated until it reproduces itself.
      InitializeXsiterUsiter(k, n, m, nt, s.sys.maxLead, s.crit.xtws, out.us, xsiterStore,
                             fctx.notConverged, xsiter, usiter, trace);
      fctx.notConverged = false;
      mmovsub(1, m, 0, nt - 1, usiter, usOld);
      if (olfLike) mmov(np, np, kk.sitt, par.sitt);
      const FeedbackRule& projected = hcfr ? s.hcfrRule : rule;
      for (int iter = 1; iter <= fctx.iterlim; ++iter) {
        if (trace.on(SolveTopic::RunHeadings))
          trace.file().write(
              formatLabelled("\r\n\r\n%s%d",
                             (" " + routine + " - forward variable loop   iter = ").c_str(), iter));
        if (!hcfr) {
          mmovsub(1, n, 0, nt - 1, cs, csAdjusted);
          forward(n, m, nt, k, 1, s.sys.maxLead, csAdjusted, s.sys.d1, s.sys.d2, s.sys.d3, xsiter,
                  trace);
          if (olfLike) {
            CompKpgOlfForw(n, m, nt, k, a, b, csAdjusted, s.crit, par, solveWork, rule, trace);
          } else {
            CompKpgCeForw(n, m, nt, k, a, b, csAdjusted, s.crit, solveWork, rule, trace);
          }
          if (trace.on(SolveTopic::GAndG)) {
            trace.file().dumpMatrix3("gs in forward variable iteration of " + routine, k, nt - 1, 1,
                                     m, 1, n, rule.gs);
            trace.file().dumpMatrix("glcs in forward variable itertion of " + routine, 1, m, k,
                                    nt - 1, rule.glcs);
          }
        }
        ProjectionForwVar(iter, fctx.iterlim, k, projection, projected, xhat, xsiter, usiter,
                          csUsed, trace);
        double eps = 0.0;
        CheckConvergence(run, iter, k, m, nt, usiter, usOld, eps, fctx, trace);
        if (iter >= 2 && eps <= fctx.tolerance) break;
      }
      if (fctx.notConverged) flags.forwardFailure = true;
      mmovsub(1, n, k, lastCol, xsiter, xsiterStore);
      if (!hcfr) {
        const Mat gk = feedbackAt(rule, k, m, n);
        mmov(m, n, gk, g);
        for (int i = 1; i <= m; ++i) glc(i, 1) = rule.glcs(i, k);
      }
    }
    pctx.hcfr = hcfr;
    CompUOnePeriod(n, m, g, glc, xhat, uk, pctx, trace);
    vcolget(n, k, out.xs, xk);
    if (forwardModel) {
      CompXOnePeriodForw(economy, k, s.sys.d1, s.sys.d2, s.sys.d3, xsiter, xk, uk, xk1, y, trace);
    } else {
      CompXOnePeriod(economy, k, xk, uk, xk1, y, pctx, trace);
    }
    pctx.hcfr = false;
    vcolset(n, k + 1, xk1, out.xs);
    vcolset(m, k, uk, out.us);
    TrueParameterEvolution(pctx, drift, k, n, s.ithn, uk, out.us, out.thetatrue, atrue, btrue,
                           ctruetv, prompter, trace);
    // The filter predicts with the economy's own equation: in a forward-looking model the
    // constant of the period carries the lead terms of the expected path the economy used.
    vcolget(n, k, cs, ck);
    if (forwardModel) {
      ExpectedLeadTerms(n, k, s.sys.d1, s.sys.d2, s.sys.d3, xsiter, lead);
      madd(n, 1, ck, lead.dxesum, ck);
    }
    const FilterSystem sys{n,   m,     s.l,   np,    ny,  a,     b,   ck,
                           s.d, s.ath, s.bth, s.cth, s.q, s.gam, s.h, s.r};
    KStep(sys, kk, uk, k1k, trace, &filterWork);
    Sigk1k(sys, kk, uk, k1k, trace, &filterWork);
    Sigk1k1(sys, y, k1k, k1k1, trace, &filterWork);
    // CEWO learns the state but never moves its parameter estimate.
    if (method == kCeWo) mmov(np, 1, kk.th, k1k1.th);
    // OLIN knows the policy-to-parameter effect and adds it to the estimate.
    if (method == kOlIn)
      CompPolicyParmEffect(pctx, drift, k, uk, out.us, out.thetatrue, k1k1.th, trace);
    mmov(n, 1, k1k1.xh, kk.xh);
    mmov(np, 1, k1k1.th, kk.th);
    mmov(n, n, k1k1.sixx, kk.sixx);
    mmovsub(1, np, 1, n, k1k1.sitx, kk.sitx);
    mmov(np, np, k1k1.sitt, kk.sitt);
    vcolset(np, k + 1, kk.th, out.thetas);
  }

  out.criterion = realisedCriterion(n, m, nt, s.crit, out.xs, out.us);
  if (trace.on(SolveTopic::StatesControlsFinal)) {
    DebugFile& f = trace.file();
    f.dumpScalar("criterion" + in, out.criterion);
    f.dumpMatrix("xs" + in, 1, n, 0, nt, out.xs);
    f.dumpMatrix("us" + in, 1, m, 0, nt - 1, out.us);
  }
  if (trace.on(SolveTopic::EstimatedParametersFinal))
    trace.file().dumpMatrix("thetas" + in, 1, np, 0, nt, out.thetas);
  return trace.ok();
}

// Every selected method, in table order, steers the run's economy from the run's terms.
int runSelectedMethods(int run, const MethodSelection& selected, const CompareSetup& s,
                       const RandomTerms& terms, PeriodContext& pctx, RunFlags& flags,
                       Prompter& prompter, const SolveTrace& trace,
                       std::array<RunPaths, kMethodCount>& out) {
  for (int method = 0; method < kMethodCount; ++method) {
    const auto k = static_cast<std::size_t>(method);
    if (!selected[k]) continue;
    pctx.run = run;
    pctx.method = kMethodNames[k];
    runMethod(method, run, s, terms, pctx, flags, prompter, trace, out[k]);
  }
  return trace.ok();
}

// One run of a batch handed to the threads: its own copy of the terms, its own warning flags,
// and the messages of its draw and of its methods, kept to be shown in run order.
struct RunSlot {
  RandomTerms terms;
  RecordingPrompter drawMessages, runMessages;
  PeriodContext pctx;
  RunFlags flags;
  std::array<RunPaths, kMethodCount> paths;
};

bool cancelled(const CompareSettings& settings) {
  return settings.cancel != nullptr && settings.cancel->load();
}

void replay(const RecordingPrompter& from, Prompter& to) {
  for (const Message& message : from.messages()) to.show(message);
}

int threadCount(const CompareSettings& settings) {
  if (settings.threads > 0) return settings.threads;
  const unsigned cores = std::thread::hardware_concurrency();
  return cores > 0 ? static_cast<int>(cores) : 1;
}

// What a run solved by another process hands back: its messages, its warning flags and the
// paths and criterion of each selected method.
void writeRun(const MethodSelection& selected, const RunSlot& slot, RunRecordWriter& w) {
  w.put(static_cast<int>(slot.runMessages.messages().size()));
  for (const Message& message : slot.runMessages.messages()) w.put(message);
  w.put(slot.pctx.divisionWarning);
  w.put(slot.flags.forwardFailure);
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    if (!selected[k]) continue;
    const RunPaths& p = slot.paths[k];
    w.put(p.xs);
    w.put(p.us);
    w.put(p.thetas);
    w.put(p.thetatrue);
    w.put(p.criterion);
  }
}

void readRun(const MethodSelection& selected, RunRecordReader& r, RunSlot& slot) {
  for (int count = r.getInt(); count > 0; --count) slot.runMessages.show(r.getMessage());
  slot.pctx.divisionWarning = r.getBool();
  slot.flags.forwardFailure = r.getBool();
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    if (!selected[k]) continue;
    RunPaths& p = slot.paths[k];
    p.xs = r.getMat();
    p.us = r.getMat();
    p.thetas = r.getMat();
    p.thetatrue = r.getMat();
    p.criterion = r.getDouble();
  }
}

// The untraced run loop. Runs are taken in batches: the terms of a batch are drawn in run order
// on this thread (the stream and its accumulators see exactly the serial sequence), the batch's
// runs are solved on the threads, and then each run's messages, flags and paths are taken in run
// order. Messages raised inside the runs are all plain notices, so holding them back changes no
// answer. Nothing here writes a debug file, so nothing can fail.
//
// With other processes sharing the runs, every process draws every run of the batch (that is
// how it reaches the stream position of its own runs), solves its slice of the batch and sends
// it to process 0, which alone records. Returns false in a process other than 0.
template <typename Record>
bool parallelRuns(int nmc, const CompareSettings& settings, const CompareSetup& s, bool generate,
                  RandomState& random, RandomSources& src, RandomTerms& terms,
                  RandomAccumulators& acc, PeriodContext& pctx, RunFlags& flags, Prompter& prompter,
                  Progress& progress, Record& recordRun,
                  std::array<RunPaths, kMethodCount>& lastRun) {
  const int threads = std::max(1, std::min(threadCount(settings), nmc));
  RunDistributor* const shared = settings.distributor;
  const RunShares shares = shared != nullptr ? shared->join(true, nmc, threadCount(settings))
                                             : RunShares::alone(threads);
  const bool recorder = shares.rank == 0;
  if (shares.weights[static_cast<std::size_t>(shares.rank)] == 0) return recorder;
  const int batch = std::max(1, std::min(nmc, 8 * shares.total()));
  std::vector<RunSlot> slots(static_cast<std::size_t>(batch));
  const SolveTrace untraced;
  for (int first = 1; first <= nmc; first += batch) {
    const int count = std::min(batch, nmc - first + 1);
    for (int i = 0; i < count; ++i) {
      RunSlot& slot = slots[static_cast<std::size_t>(i)];
      slot.drawMessages.clear();
      slot.runMessages.clear();
      if (generate) GenerateRandomTerms(random, src, terms, acc, slot.drawMessages, untraced);
      slot.terms = terms;
      slot.pctx = PeriodContext{};
      slot.flags = RunFlags{};
    }
    const auto [own, end] = shares.slice(shares.rank, count);
    std::atomic<int> next{own};
    auto work = [&] {
      for (int i = next++; i < end; i = next++) {
        RunSlot& slot = slots[static_cast<std::size_t>(i)];
        runSelectedMethods(first + i, settings.methods, s, slot.terms, slot.pctx, slot.flags,
                           slot.runMessages, untraced, slot.paths);
      }
    };
    {
      std::vector<std::jthread> pool;
      for (int t = 1; t < std::min(threads, end - own); ++t) pool.emplace_back(work);
      work();
    }
    if (!recorder) {
      RunRecordWriter w;
      for (int i = own; i < end; ++i)
        writeRun(settings.methods, slots[static_cast<std::size_t>(i)], w);
      shared->sendToFirst(w.bytes());
      continue;
    }
    for (int r = 1; r < static_cast<int>(shares.weights.size()); ++r) {
      if (shares.weights[static_cast<std::size_t>(r)] == 0) continue;
      const RunBytes bytes = shared->receiveFrom(r);
      RunRecordReader reader(bytes);
      const auto [from, to] = shares.slice(r, count);
      for (int i = from; i < to; ++i)
        readRun(settings.methods, reader, slots[static_cast<std::size_t>(i)]);
      if (!reader.atEnd()) throw std::runtime_error("a run record from another process is damaged");
    }
    for (int i = 0; i < count; ++i) {
      if (cancelled(settings)) return true;
      RunSlot& slot = slots[static_cast<std::size_t>(i)];
      progress.step();
      replay(slot.drawMessages, prompter);
      replay(slot.runMessages, prompter);
      pctx.divisionWarning = pctx.divisionWarning || slot.pctx.divisionWarning;
      flags.forwardFailure = flags.forwardFailure || slot.flags.forwardFailure;
      recordRun(slot.paths);
      if (first + i == nmc) lastRun = std::move(slot.paths);
    }
  }
  return recorder;
}

constexpr const char* kQWarning =
    "Q(1,1) is very small.  If Q is a zero matrix \t          \r it may cause SIXXK1K to "
    "approach zero and therefore  \t\t\t  \r cause S to be singluar.  "
    "(See the covariance prediction and measurement update of the augmented Kalman filter: "
    "the predicted state covariance carries Q, and S = H SIXXK1K H' + R.)  \t\t\t  \r "
    "The remedy for this probem \t\t\t  \r is to select   Data:Additive Noise Terms: Q and then "
    "to \t\t\t  \r input small but nonzero terms in the diagonal elements \t\t\t  \r of the Q "
    "matrix.   Another alternative is to use only \t\t\t  \r the command Solve:OLF and not the "
    "command Solve: Compare \t\t\t  \r with this version of the model. \t\t\t  \r        "
    "       \t\t\t  \r                               Continue?";

constexpr const char* kForwardFailure =
    "Convergence in the forward variable loop\t\t\t\r failed for at least one time period in "
    "one Monte Carlo run.\t\t\t\r Use Solve: Compare: Print to locate the time period\t\t\t\r "
    "and Monte Carlo run.";

constexpr const char* kDivisionFailure =
    "Attempt to divide by very small number\t\t\t\r in policy-to-parameter calculation for "
    "ukpercent\t\t\t\r in subroutine CompThetaTrueOnePeriod or \t\t\t\r in subroutine "
    "CompPolicyParmEffect for \t\t\t\r at least one control variable, \t\t\t\r time period and "
    "Monte Carlo run.\t\t\t\r Use Solve: Compare: Print and find the 'Warning!' \t\t\t\r "
    "message to determine the source of,\t\t\t\r the problem or problems.";

}  // namespace

CompareResult maincompare(const Model& model, const CompareSettings& settings, RandomState& random,
                          Prompter& prompter, Progress& progress) {
  CompareResult result;
  const int stoch = model.flags.stochTerms;
  if (stoch != opt::kAdditiveNoise && stoch != opt::kParameterUncertainty &&
      stoch != opt::kMeasurementError) {
    prompter.inform(
        "Warning: Need complexity of stochastic \t\t   \r or greater for "
        "Solve:Compare.  Use Solve:QLP instead.",
        "Warning!!", Icon::Exclamation);
    return result;
  }
  if (!checkSolveInputs(model, prompter)) return result;

  CompareSetup s;
  s.n = model.dims.n.value;
  s.m = model.dims.m.value;
  s.l = model.dims.l.value;
  s.nt = solverPeriods(model);
  s.np = model.dims.np.value;
  s.ny = s.n;
  const int n = s.n, m = s.m, nt = s.nt, np = s.np, ny = s.ny;
  const int nmc = settings.runs ? *settings.runs : model.dims.nmc.value;
  if (model.dims.ny.value != ny && model.dims.ny.value != 0)
    prompter.inform("Warning!", "ny in maincompare not equal to nSizeObservations.");
  result.n = n;
  result.m = m;
  result.nt = nt;
  result.np = np;
  result.selected = settings.methods;

  DebugFile* file = settings.file;
  const DebugSwitches& switches = settings.debug.switches;
  SolveTrace trace = monteCarloTrace(file, switches);
  if (file != nullptr && !writeDebugHeading(*file, " Debug File for OLF ", model)) {
    result.status = 0;
    return result;
  }

  systemInput(model, trace, s.sys);
  criterionInput(model, trace, s.crit);
  s.theta0 = readModelMatrix(model, MatrixId::TH0, np, 1, 1);
  const Mat theta0diff = readModelMatrix(model, MatrixId::TH0DIFF, np, 1, 1);
  s.sitt0 = readModelMatrix(model, MatrixId::SITT0, np, 1, np);
  s.ithn = readModelIntMatrix(model, MatrixId::ITHN, np, 3);
  const Mat xsisModel = readModelMatrix(model, MatrixId::XSIS, n, 0, nt - 1);
  s.q = readModelMatrix(model, MatrixId::Q, n, 1, n);
  if (trace.on(SolveTopic::UncertainParameters)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("theta0", 1, np, 1, 1, s.theta0);
    f.dumpMatrix("theta0diff", 1, np, 1, 1, theta0diff);
    f.dumpMatrix("sitt0", 1, np, 1, np, s.sitt0);
    f.dumpIntMatrix("ithn", 1, np, 1, 3, s.ithn);
    f.dumpMatrix("xsis", 1, n, 0, nt - 1, xsisModel);
  }
  if (settings.qTest && s.q(1, 1) < 1e-10) {
    if (prompter.ask(kQWarning, "Warning!", Buttons::YesNo, Answer::Yes, Icon::Exclamation) ==
        Answer::No) {
      result.status = 0;
      return result;
    }
  }
  s.policy = model.flags.policyToParam == opt::kPolicyYes ? 1 : 0;
  s.npolicy = readModelMatrix(model, MatrixId::N, np, 1, m);
  s.hcfrG = readModelMatrix(model, MatrixId::G, m, 1, n);
  s.hcfrg = readModelMatrix(model, MatrixId::g, m, 1, 1);
  s.hcfrRule = makeFeedbackRule(n, m, nt);
  for (int t = 0; t <= nt - 1; ++t) storeRule(n, m, t, s.hcfrG, s.hcfrg, s.hcfrRule);

  // The stochastic inputs: the model's own under measurement error, neutral ones otherwise.
  if (stoch == opt::kMeasurementError) {
    s.d = readModelMatrix(model, MatrixId::D, np, 1, np);
    s.h = readModelMatrix(model, MatrixId::H, ny, 1, n);
    s.sixx0 = readModelMatrix(model, MatrixId::SIXX0, n, 1, n);
    s.sitx0 = readModelMatrix(model, MatrixId::SITX0, np, 1, n);
    s.r = readModelMatrix(model, MatrixId::R, ny, 1, ny);
    s.gam = readModelMatrix(model, MatrixId::GAM, np, 1, np);
  } else {
    VeldDefaults v = InVeldDefaultsForOlf(n, nt, ny, np, trace);
    s.d = std::move(v.d);
    s.h = std::move(v.h);
    s.sixx0 = std::move(v.sixx0);
    s.sitx0 = std::move(v.sitx0);
    s.r = std::move(v.r);
    s.gam = std::move(v.gam);
  }

  // The uncertain parameters' places, their derivatives, and the true system at theta0.
  IMat nmap = imat2(1, np, 1, 1);
  for (int k = 1; k <= np; ++k) nmap(k, 1) = 1;
  s.par.np = np;
  s.par.napar = imat2(1, n, 1, n);
  s.par.nbpar = imat2(1, n, 1, m);
  s.par.ncpar = imat2(1, n, 1, 1);
  s.par.sitt = mat2(1, np, 1, np);
  ithnCheck(n, m, np, nmap, s.ithn, s.par.napar, s.par.nbpar, s.par.ncpar, prompter, trace);
  const int lc = s.l > 1 ? s.l : 1;
  s.ath = mat3(1, n, 1, np, 1, n);
  s.bth = mat3(1, m, 1, np, 1, n);
  s.cth = mat3(1, lc, 1, np, 1, n);
  ATheta(n, m, lc, np, s.ithn, s.ath, s.bth, s.cth, trace);
  s.atrue0 = mat2(1, n, 1, n);
  s.btrue0 = mat2(1, n, 1, m);
  s.ctruetv0 = mat2(1, n, 0, nt - 1);
  StoreATrue(n, m, nt, s.sys.a, s.sys.b, s.sys.cs, s.atrue0, s.btrue0, s.ctruetv0);
  MapThetaToAbc(n, m, nt, np, s.ithn, s.theta0, s.atrue0, s.btrue0, s.ctruetv0, prompter, trace);
  if (trace.on(SolveTopic::TrueParametersFinal))
    trace.file().dumpMatrix("theta0 in maincompare", 1, np, 1, 1, s.theta0);
  s.forwardBase.iterlim = model.dims.iterlim.value;
  s.forwardBase.tolerance = model.dims.tolerance;

  // The random terms: their sources, and the draws' inputs.
  RandomSources src;
  src.n = n;
  src.nt = nt;
  src.np = np;
  src.ny = ny;
  src.theta0 = s.theta0;
  src.sitt0 = s.sitt0;
  src.q = s.q;
  src.x0 = s.crit.x0;
  src.sixx0 = s.sixx0;
  src.r = s.r;
  src.gam = s.gam;
  src.switches = model.randomSwitches;
  src.eps = settings.eps;
  RandomTerms terms = makeRandomTerms(n, nt, np, ny);
  chooseRandomSource(model, src, terms, prompter, trace);
  const bool generate = model.flags.randomSource != opt::kReadIn;
  if (file != nullptr && switches.any() && !writeSeedLines(*file, random)) {
    result.status = 0;
    return result;
  }
  RandomAccumulators acc = makeRandomAccumulators(n, np);

  MonteCarloPaths paths = makeMonteCarloPaths(n, m, nt, nmc);
  progress.start(nmc);
  if (nmc == 0)
    prompter.inform("Number of Monte Carlo runs set to zero so no solution.", "Warning!",
                    Icon::Exclamation);
  PeriodContext pctx;
  RunFlags flags;
  // What one run adds to the results, in run order.
  auto recordRun = [&](const std::array<RunPaths, kMethodCount>& rps) {
    const int run = static_cast<int>(result.mcResults.size()) + 1;
    std::array<double, kMethodCount> criteria{};
    for (int method = 0; method < kMethodCount; ++method) {
      const auto k = static_cast<std::size_t>(method);
      if (!settings.methods[k]) continue;
      criteria[k] = rps[k].criterion;
      result.criterionSums[k] += rps[k].criterion;
      storeRunPaths(paths, method, run, rps[k]);
    }
    result.mcResults.push_back(criteria);
    countLowestCriterion(settings.methods, criteria, result.lowestCounts);
  };
  // Without a debug file the runs go to a pool of threads: their terms are drawn here in run
  // order as always, and what they return is added up in run order, so the result is the same to
  // the bit whatever the number of threads. A traced comparison stays on this thread, in order.
  if (file == nullptr && !parallelRuns(nmc, settings, s, generate, random, src, terms, acc, pctx,
                                       flags, prompter, progress, recordRun, result.lastRun)) {
    result.status = 0;  // a helper process: its runs went to process 0, which keeps the result
    return result;
  }
  for (int run = 1; file != nullptr && run <= nmc && !file->failed() && !cancelled(settings);
       ++run) {
    trace = runTrace(file, settings.debug, run);
    progress.step();
    if (generate) GenerateRandomTerms(random, src, terms, acc, prompter, trace);
    runSelectedMethods(run, settings.methods, s, terms, pctx, flags, prompter, trace,
                       result.lastRun);
    recordRun(result.lastRun);
  }
  progress.finish();
  if (cancelled(settings) && static_cast<int>(result.mcResults.size()) < nmc) {
    result = CompareResult{};
    result.status = 0;
    result.cancelled = true;
    return result;
  }
  result.runs = static_cast<int>(result.mcResults.size());
  result.xtws = s.crit.xtws;
  result.utws = s.crit.utws;
  if (flags.forwardFailure) prompter.inform(kForwardFailure, "Warning!", Icon::Exclamation);
  if (pctx.divisionWarning) prompter.inform(kDivisionFailure, "Warning!", Icon::Exclamation);
  if (file != nullptr && file->failed()) {
    result.status = 0;
    return result;
  }
  result.status = 1;
  if (result.runs > 1) {
    monteCarloSummary(result, prompter, trace);
    pathStatistics(result, paths, s.crit.xtws, s.crit.utws, settings.debug.switches, file);
    if (generate) randomDrawCheck(result, acc, terms, trace);
  }
  result.runXs = std::move(paths.xs);
  result.runUs = std::move(paths.us);
  return result;
}

}  // namespace ovaro
