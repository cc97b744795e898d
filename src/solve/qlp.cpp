#include "solve/qlp.h"

#include <string>
#include <vector>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/model_input.h"
#include "solve/system_forms.h"

namespace ovaro {

FeedbackRule makeFeedbackRule(int n, int m, int nt) {
  return FeedbackRule{mat3(0, nt - 1, 1, m, 1, n), mat2(1, m, 0, nt - 1)};
}

Mat feedbackAt(const FeedbackRule& rule, int t, int m, int n) {
  Mat g = mat2(1, m, 1, n);
  for (int i = 1; i <= m; ++i)
    for (int j = 1; j <= n; ++j) g(i, j) = rule.gs(t, i, j);
  return g;
}

// ---------------------------------------------------------------------------------------------
// Inputs

namespace {

constexpr const char* kErrorCaption = "Error";

bool requireForm(int value, std::initializer_list<int> allowed, const char* what,
                 Prompter& prompter) {
  for (int a : allowed)
    if (value == a) return true;
  prompter.inform(std::string("The model has no ") + what +
                      " chosen. Choose it under Specification: Functional Forms, then solve "
                      "again.",
                  kErrorCaption, Icon::Stop);
  return false;
}

bool requireMatrix(const Model& model, MatrixId id, Prompter& prompter) {
  if (model.holds(id)) return true;
  const MatrixSpec& spec = matrixSpec(id);
  prompter.inform(std::string("The model holds no matrix ") + spec.name + " (" + spec.title +
                      "). Enter it under Data, then solve again.",
                  kErrorCaption, Icon::Stop);
  return false;
}

// The column t of a per-period array as a column vector.
Mat column(int rows, int t, const Mat& a) {
  Mat c = mat2(1, rows, 1, 1);
  vcolget(rows, t, a, c);
  return c;
}

}  // namespace

bool checkSolveInputs(const Model& model, Prompter& prompter) {
  const Dimensions& d = model.dims;
  if (d.n.value < 1 || d.m.value < 1 || d.nt.value < 2 || d.l.value < 0) {
    prompter.inform(
        "The model needs at least one state variable, one control variable and two "
        "time periods to be solved. Set them under Data: Size, then enter "
        "the data.",
        kErrorCaption, Icon::Stop);
    return false;
  }
  const SpecFlags& f = model.flags;
  if (!requireForm(f.criterionForm, {opt::kQuadraticTracking, opt::kQuadraticForm},
                   "criterion form", prompter) ||
      !requireForm(f.systemForm, {opt::kRegular, opt::kPindyck}, "system form", prompter) ||
      !requireForm(f.forwardVars, {opt::kForwardNo, opt::kForwardYes}, "forward-variable choice",
                   prompter) ||
      !requireForm(f.zForm, {opt::kZConstant, opt::kZTimeVarying}, "form of z", prompter) ||
      !requireForm(f.wForm, {opt::kWConstant, opt::kWTerminalDifferent, opt::kWTimeVarying},
                   "form of W", prompter) ||
      !requireForm(f.lambdaForm, {opt::kLambdaConstant, opt::kLambdaTimeVarying}, "form of Lambda",
                   prompter) ||
      !requireForm(f.xdesForm, {opt::kXdesConstant, opt::kXdesTimeVarying, opt::kXdesBoth},
                   "form of xdes", prompter) ||
      !requireForm(f.udesForm, {opt::kUdesConstant, opt::kUdesTimeVarying}, "form of udes",
                   prompter)) {
    return false;
  }
  const bool forward = f.forwardVars == opt::kForwardYes;
  if (forward && !leadIsValid(model)) {
    prompter.inform("Maximum Lead must be 1, 2 or 3.", kErrorCaption, Icon::Stop);
    return false;
  }
  std::vector<MatrixId> needed;
  if (f.systemForm == opt::kRegular) {
    needed = {MatrixId::A, MatrixId::B, MatrixId::C};
    const MatrixId leads[] = {MatrixId::D1, MatrixId::D2, MatrixId::D3};
    for (int j = 0; forward && j < d.maxLead.value; ++j) needed.push_back(leads[j]);
  } else {
    needed = {MatrixId::A0, MatrixId::A1, MatrixId::B1, MatrixId::C1};
    const MatrixId leads[] = {MatrixId::DHAT1, MatrixId::DHAT2, MatrixId::DHAT3};
    for (int j = 0; forward && j < d.maxLead.value; ++j) needed.push_back(leads[j]);
  }
  if (d.l.value > 0) needed.push_back(f.zForm == opt::kZTimeVarying ? MatrixId::ZT : MatrixId::Z);
  needed.push_back(MatrixId::X0);
  if (f.wForm == opt::kWTimeVarying) {
    needed.push_back(MatrixId::WT);
  } else {
    needed.push_back(MatrixId::W);
    if (f.wForm == opt::kWTerminalDifferent) needed.push_back(MatrixId::WN);
  }
  needed.push_back(f.lambdaForm == opt::kLambdaTimeVarying ? MatrixId::LAMBDAT : MatrixId::LAMBDA);
  needed.push_back(f.xdesForm == opt::kXdesConstant ? MatrixId::XDES : MatrixId::XDEST);
  needed.push_back(f.udesForm == opt::kUdesTimeVarying ? MatrixId::UDEST : MatrixId::UDES);
  for (MatrixId id : needed)
    if (!requireMatrix(model, id, prompter)) return false;
  return true;
}

int systemInput(const Model& model, const SolveTrace& trace, SystemArrays& sys) {
  const int n = model.dims.n.value;
  const int m = model.dims.m.value;
  const int l = model.dims.l.value;
  const int nt = solverPeriods(model);
  const bool pindyck = model.flags.systemForm == opt::kPindyck;
  sys.n = n;
  sys.m = m;
  sys.l = l;
  sys.nt = nt;
  sys.forward = model.flags.forwardVars == opt::kForwardNo ? 0 : 1;
  sys.maxLead = sys.forward ? model.dims.maxLead.value : 0;
  const int lead = sys.maxLead;
  sys.d1 = mat2(1, n, 1, n);
  sys.d2 = mat2(1, n, 1, n);
  sys.d3 = mat2(1, n, 1, n);
  sys.cs = mat2(1, n, 0, nt - 1);

  Mat a0, a1, b1, c1;
  Mat ddag[3] = {mat2(1, n, 1, n), mat2(1, n, 1, n), mat2(1, n, 1, n)};
  if (!pindyck) {
    sys.a = readModelMatrix(model, MatrixId::A, n, 1, n);
    sys.b = readModelMatrix(model, MatrixId::B, n, 1, m);
    sys.capc = readModelMatrix(model, MatrixId::C, n, 1, l);
    if (lead >= 1) sys.d1 = readModelMatrix(model, MatrixId::D1, n, 1, n);
    if (lead >= 2) sys.d2 = readModelMatrix(model, MatrixId::D2, n, 1, n);
    if (lead >= 3) sys.d3 = readModelMatrix(model, MatrixId::D3, n, 1, n);
  } else {
    a0 = readModelMatrix(model, MatrixId::A0, n, 1, n);
    a1 = readModelMatrix(model, MatrixId::A1, n, 1, n);
    b1 = readModelMatrix(model, MatrixId::B1, n, 1, m);
    c1 = readModelMatrix(model, MatrixId::C1, n, 1, l);
    const MatrixId hats[] = {MatrixId::DHAT1, MatrixId::DHAT2, MatrixId::DHAT3};
    for (int j = 0; j < lead; ++j) ddag[j] = readModelMatrix(model, hats[j], n, 1, n);
    sys.a = mat2(1, n, 1, n);
    sys.b = mat2(1, n, 1, m);
    sys.capc = mat2(1, n, 1, l);
    if (!iatoi(n, m, l, lead, a0, a1, b1, c1, ddag[0], ddag[1], ddag[2], sys.a, sys.b, sys.capc,
               sys.d1, sys.d2, sys.d3, trace)) {
      return 0;
    }
  }

  const bool zVarying = model.flags.zForm == opt::kZTimeVarying;
  const Mat z = zVarying ? readModelMatrix(model, MatrixId::ZT, l, 0, nt - 1)
                         : readModelMatrix(model, MatrixId::Z, l, 1, 1);
  for (int t = 0; t <= nt - 1; ++t) {
    const int zc = zVarying ? t : 1;
    for (int i = 1; i <= n; ++i) {
      double sum = 0.0;
      for (int k = 1; k <= l; ++k) sum += sys.capc(i, k) * z(k, zc);
      sys.cs(i, t) = sum;
    }
  }

  if (!trace.on(SolveTopic::SystemInput)) return 1;
  DebugFile& f = trace.file();
  f.dumpMatrix("a", 1, n, 1, n, sys.a);
  f.dumpMatrix("b", 1, n, 1, m, sys.b);
  f.dumpMatrix("capc", 1, n, 1, l, sys.capc);
  if (zVarying) {
    f.dumpMatrix("zs", 1, l, 0, nt - 1, z);
  } else {
    f.dumpMatrix("z", 1, l, 1, 1, z);
  }
  if (!pindyck) {
    if (lead >= 1) f.dumpMatrix("d1", 1, n, 1, n, sys.d1);
    if (lead >= 2) f.dumpMatrix("d2", 1, n, 1, n, sys.d2);
    if (lead >= 3) f.dumpMatrix("d3", 1, n, 1, n, sys.d3);
  } else {
    f.dumpMatrix("a0", 1, n, 1, n, a0);
    f.dumpMatrix("a1", 1, n, 1, n, a1);
    f.dumpMatrix("b1", 1, n, 1, m, b1);
    f.dumpMatrix("c1", 1, n, 1, l, c1);
    if (lead >= 1) f.dumpMatrix("ddag1", 1, n, 1, n, ddag[0]);
    if (lead >= 2) f.dumpMatrix("ddag2", 1, n, 1, n, ddag[1]);
    if (lead >= 3) f.dumpMatrix("ddag3", 1, n, 1, n, ddag[2]);
  }
  f.dumpMatrix("cs", 1, n, 0, nt - 1, sys.cs);
  return trace.ok();
}

int criterionInput(const Model& model, const SolveTrace& trace, CriterionArrays& crit) {
  const int n = model.dims.n.value;
  const int m = model.dims.m.value;
  const int nt = solverPeriods(model);
  const SpecFlags& fl = model.flags;
  crit.tracking = fl.criterionForm == opt::kQuadraticForm ? 0 : 1;
  crit.f = mat2(1, n, 1, m);
  crit.ws = mat2(1, n, 0, nt);
  crit.lams = mat2(1, m, 0, nt - 1);
  crit.xtws = mat2(1, n, 0, nt);
  crit.utws = mat2(1, m, 0, nt - 1);
  crit.wlcs = mat2(1, n, 0, nt);
  crit.lamlcs = mat2(1, m, 0, nt - 1);

  Mat w, wn, lam, xtw, utw;
  if (fl.wForm == opt::kWTimeVarying) {
    crit.ws = readModelMatrix(model, MatrixId::WT, n, 0, nt);
  } else {
    w = readModelMatrix(model, MatrixId::W, n, 1, 1);
    wn = fl.wForm == opt::kWTerminalDifferent ? readModelMatrix(model, MatrixId::WN, n, 1, 1) : w;
    for (int t = 0; t <= nt - 1; ++t) vcolset(n, t, w, crit.ws);
    vcolset(n, nt, wn, crit.ws);
  }
  if (fl.lambdaForm == opt::kLambdaTimeVarying) {
    crit.lams = readModelMatrix(model, MatrixId::LAMBDAT, m, 0, nt - 1);
  } else {
    lam = readModelMatrix(model, MatrixId::LAMBDA, m, 1, 1);
    for (int t = 0; t <= nt - 1; ++t) vcolset(m, t, lam, crit.lams);
  }
  crit.x0 = readModelMatrix(model, MatrixId::X0, n, 1, 1);
  if (fl.xdesForm == opt::kXdesConstant) {
    xtw = readModelMatrix(model, MatrixId::XDES, n, 1, 1);
    for (int t = 0; t <= nt; ++t) vcolset(n, t, xtw, crit.xtws);
  } else {
    crit.xtws = readModelMatrix(model, MatrixId::XDEST, n, 0, nt);
  }
  if (fl.udesForm == opt::kUdesTimeVarying) {
    crit.utws = readModelMatrix(model, MatrixId::UDEST, m, 0, nt - 1);
  } else {
    utw = readModelMatrix(model, MatrixId::UDES, m, 1, 1);
    for (int t = 0; t <= nt - 1; ++t) vcolset(m, t, utw, crit.utws);
  }
  // The "Quadratic Form" criterion takes no linear terms from the desired paths; they stay 0.
  if (crit.tracking == 1) {
    for (int t = 0; t <= nt; ++t)
      for (int i = 1; i <= n; ++i) crit.wlcs(i, t) = -crit.ws(i, t) * crit.xtws(i, t);
    for (int t = 0; t <= nt - 1; ++t)
      for (int j = 1; j <= m; ++j) crit.lamlcs(j, t) = -crit.lams(j, t) * crit.utws(j, t);
  }

  if (trace.on(SolveTopic::CriterionInput)) {
    DebugFile& f = trace.file();
    if (fl.wForm != opt::kWTimeVarying) f.dumpMatrix("w", 1, n, 1, 1, w);
    if (fl.wForm == opt::kWTerminalDifferent) f.dumpMatrix("wn", 1, n, 1, 1, wn);
    if (fl.lambdaForm != opt::kLambdaTimeVarying) f.dumpMatrix("lam", 1, m, 1, 1, lam);
    f.dumpMatrix("ws", 1, n, 0, nt, crit.ws);
    f.dumpMatrix("lams", 1, m, 0, nt - 1, crit.lams);
  }
  if (trace.on(SolveTopic::SystemInput)) trace.file().dumpMatrix("x0", 1, n, 1, 1, crit.x0);
  if (trace.on(SolveTopic::CriterionInput)) {
    DebugFile& f = trace.file();
    if (fl.xdesForm == opt::kXdesConstant) f.dumpMatrix("xtw", 1, n, 1, 1, xtw);
    if (fl.udesForm != opt::kUdesTimeVarying) f.dumpMatrix("utw", 1, m, 1, 1, utw);
    f.dumpMatrix("xtws", 1, n, 0, nt, crit.xtws);
    f.dumpMatrix("utws", 1, m, 0, nt - 1, crit.utws);
  }
  if (trace.on(SolveTopic::TrackingToQuadratic)) {
    DebugFile& f = trace.file();
    f.dumpMatrix("f-trnreg", 1, n, 1, m, crit.f);
    f.dumpMatrix("wlcs", 1, n, 0, nt, crit.wlcs);
    f.dumpMatrix("lamlcs", 1, m, 0, nt - 1, crit.lamlcs);
  }
  return trace.ok();
}

// ---------------------------------------------------------------------------------------------
// The Riccati recursion

RiccatiWork::RiccatiWork(int n, int m)
    : k(mat2(1, n, 1, n)),
      p(mat2(1, n, 1, 1)),
      phi(mat2(1, n, 1, n)),
      psi(mat2(1, n, 1, m)),
      theta(mat2(1, m, 1, m)),
      philc(mat2(1, n, 1, 1)),
      thetalc(mat2(1, m, 1, 1)),
      thetainv(mat2(1, m, 1, m)),
      g(mat2(1, m, 1, n)),
      glc(mat2(1, m, 1, 1)),
      scratch(n, m) {}

RiccatiScratch::RiccatiScratch(int n, int m)
    : q(mat2(1, n, 1, 1)),
      psithinv(mat2(1, n, 1, m)),
      psit(mat2(1, m, 1, n)),
      psipsi(mat2(1, n, 1, n)),
      quadA(n, n),
      quadB(m, n),
      inverse(m) {}

void RiccatiWork::terminal(int n, int nt, const Mat& ws, const Mat& wlcs) {
  mzero(n, n, k);
  for (int i = 1; i <= n; ++i) {
    k(i, i) = ws(i, nt);
    p(i, 1) = wlcs(i, nt);
  }
}

void storeRule(int n, int m, int t, const Mat& g, const Mat& glc, FeedbackRule& rule) {
  for (int i = 1; i <= m; ++i) {
    for (int j = 1; j <= n; ++j) rule.gs(t, i, j) = g(i, j);
    rule.glcs(i, t) = glc(i, 1);
  }
}

int takeRule(int n, int m, const RiccatiWork& w, Mat& g, Mat& glc, const SolveTrace& trace) {
  mmov(m, n, w.g, g);
  mmov(m, 1, w.glc, glc);
  if (!trace.on(SolveTopic::GAndG)) return 1;
  trace.file().dumpMatrix("g", 1, m, 1, n, g);
  trace.file().dumpMatrix("glc", 1, m, 1, 1, glc);
  return trace.ok();
}

int pathsAndCriterion(const SystemArrays& sys, const CriterionArrays& crit,
                      const FeedbackRule& rule, Mat& xs, Mat& us, double& criterion,
                      const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  forwardPass(sys, crit.x0, rule, xs, us, trace);
  if (trace.on(SolveTopic::XAndU)) {
    trace.file().dumpMatrix("xs", 1, n, 0, xs.chi(), xs);
    trace.file().dumpMatrix("us", 1, m, 0, nt - 1, us);
  }
  criterion = sumc(n, m, nt, crit, xs, us, trace);
  if (trace.on(SolveTopic::CriterionValue)) trace.file().dumpScalar("criterion", criterion);
  return trace.ok();
}

int comphi(int n, int m, int nt, int t, const Mat& a, const Mat& b, const CriterionArrays& crit,
           RiccatiWork& w, const SolveTrace& trace) {
  const Mat &f = crit.f, &lams = crit.lams, &ws = crit.ws, &k = w.k;
  Mat &phi = w.phi, &psi = w.psi, &theta = w.theta;
  RiccatiScratch& work = w.scratch;
  const bool traced = trace.on(SolveTopic::PhiThetaPsi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("a in comphi", 1, n, 1, n, a);
    d.dumpMatrix("kj1 in comphi", 1, n, 1, n, k);
    d.dumpMatrix("ws in comphi", 1, n, 0, nt, ws);
  }
  mmul31tv(n, n, t, a, k, ws, phi, trace.matrixTrace(SolveTopic::PhiThetaPsi), work.quadA);
  mqformdiag(m, n, t, b, k, lams, theta, work.quadB);
  // theta's quadratic form leaves K B behind; psi = A' (K B) + F takes it from there, so that
  // the product is formed once per step.
  mtransmuladd(n, n, m, a, work.quadB.ka, f, psi);
  if (traced) {
    DebugFile& d = trace.file();
    d.dumpMatrix("phi in comphi", 1, n, 1, n, phi);
    d.dumpMatrix("b in comphi", 1, n, 1, m, b);
    d.dumpMatrix("lams in comphi", 1, m, 0, nt - 1, lams);
    d.dumpMatrix("theta in comphi", 1, m, 1, m, theta);
    d.dumpMatrix("f in comphi", 1, n, 1, m, f);
    d.dumpMatrix("psi in comphi", 1, n, 1, m, psi);
  }
  return trace.ok();
}

void comphilc(int n, int m, int t, const Mat& a, const Mat& b, const Mat& cs,
              const CriterionArrays& crit, RiccatiWork& w) {
  const Mat &k = w.k, &p = w.p, &wlcs = crit.wlcs, &lamlcs = crit.lamlcs;
  Mat &philc = w.philc, &thetalc = w.thetalc, &q = w.scratch.q;
  for (int i = 1; i <= n; ++i) {
    double kc = 0.0;
    for (int j = 1; j <= n; ++j) kc += k(i, j) * cs(j, t);
    q(i, 1) = kc + p(i, 1);
  }
  for (int i = 1; i <= n; ++i) {
    double atq = 0.0;
    for (int r = 1; r <= n; ++r) atq += a(r, i) * q(r, 1);
    philc(i, 1) = atq + wlcs(i, t);
  }
  for (int j = 1; j <= m; ++j) {
    double btq = 0.0;
    for (int r = 1; r <= n; ++r) btq += b(r, j) * q(r, 1);
    thetalc(j, 1) = btq + lamlcs(j, t);
  }
}

void riccatiUpdate(int n, int m, RiccatiWork& w) {
  const Mat &phi = w.phi, &psi = w.psi, &theta = w.theta, &philc = w.philc, &thetalc = w.thetalc;
  Mat &thetainv = w.thetainv, &k = w.k, &p = w.p, &g = w.g, &glc = w.glc;
  RiccatiScratch& work = w.scratch;
  minv(m, theta, thetainv, work.inverse);
  Mat& psithinv = work.psithinv;
  mmul(n, m, m, psi, thetainv, psithinv);
  // The products with psi' run over psi' formed once: each element is still the sum over
  // r = 1..m of its row of psithinv (or thetainv) times row j of psi, in that order.
  Mat& psit = work.psit;
  mtrans(n, m, psi, psit);
  Mat& psipsi = work.psipsi;
  mmul(n, m, n, psithinv, psit, psipsi);
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) k(i, j) = phi(i, j) - psipsi(i, j);
    double s = 0.0;
    for (int r = 1; r <= m; ++r) s += psithinv(i, r) * thetalc(r, 1);
    p(i, 1) = philc(i, 1) - s;
  }
  mmul(m, m, n, thetainv, psit, g);
  for (int i = 1; i <= m; ++i) {
    for (int j = 1; j <= n; ++j) g(i, j) = -g(i, j);
    double s = 0.0;
    for (int r = 1; r <= m; ++r) s += thetainv(i, r) * thetalc(r, 1);
    glc(i, 1) = -s;
  }
}

namespace {

// The backward recursion from the terminal values down to period `last`, calling `atStep` after
// every step with the period and the step's results.
template <typename AtStep>
int backward(int n, int m, int nt, int last, const Mat& a, const Mat& b, const Mat& cs,
             const CriterionArrays& crit, RiccatiWork& w, const SolveTrace& trace, AtStep atStep) {
  w.terminal(n, nt, crit.ws, crit.wlcs);
  for (int t = nt - 1; t >= last; --t) {
    atStep.before(t);
    comphi(n, m, nt, t, a, b, crit, w, trace);
    comphilc(n, m, t, a, b, cs, crit, w);
    riccatiUpdate(n, m, w);
    atStep.after(t);
  }
  return trace.ok();
}

}  // namespace

int riccati(const SystemArrays& sys, const CriterionArrays& crit, FeedbackRule& rule,
            const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  RiccatiWork w(n, m);
  if (trace.on(SolveTopic::KAndP)) {
    w.terminal(n, nt, crit.ws, crit.wlcs);
    trace.file().dumpMatrix("kj1", 1, n, 1, n, w.k);
    trace.file().dumpMatrix("pj1", 1, n, 1, 1, w.p);
  }
  struct Steps {
    int n, m;
    RiccatiWork& w;
    FeedbackRule& rule;
    const SolveTrace& trace;
    int before(int) { return 1; }
    int after(int t) {
      storeRule(n, m, t, w.g, w.glc, rule);
      if (trace.on(SolveTopic::KAndP)) {
        trace.file().dumpMatrix("kj", 1, n, 1, n, w.k);
        trace.file().dumpMatrix("pj", 1, n, 1, 1, w.p);
      }
      if (trace.on(SolveTopic::GAndG)) {
        trace.file().dumpMatrix("g", 1, m, 1, n, w.g);
        trace.file().dumpMatrix("glc", 1, m, 1, 1, w.glc);
      }
      return trace.ok();
    }
  } steps{n, m, w, rule, trace};
  backward(n, m, nt, 0, sys.a, sys.b, sys.cs, crit, w, trace, steps);
  return trace.ok();
}

// ---------------------------------------------------------------------------------------------
// The forward pass

int compu(int n, int m, int nt, int t, const FeedbackRule& rule, const Mat& x, Mat& u,
          const SolveTrace& trace) {
  (void)nt;
  for (int i = 1; i <= m; ++i) {
    double gx = 0.0;
    for (int j = 1; j <= n; ++j) gx += rule.gs(t, i, j) * x(j, 1);
    u(i, 1) = gx + rule.glcs(i, t);
  }
  if (!trace.on(SolveTopic::XAndUIntermediate)) return 1;
  DebugFile& f = trace.file();
  const Mat gk = feedbackAt(rule, t, m, n);
  f.dumpInt("   k = ", t);
  f.dumpMatrix("xk in compu", 1, n, 1, 1, x);
  f.dumpMatrix("gk in compu", 1, m, 1, n, gk);
  f.dumpMatrix("glck in compu", 1, m, t, t, rule.glcs);
  f.dumpMatrix("uk in compu", 1, m, 1, 1, u);
  return trace.ok();
}

int compx(int n, int m, int nt, int t, const Mat& a, const Mat& b, const Mat& cs, const Mat& x,
          const Mat& u, Mat& xnext, const SolveTrace& trace) {
  if (!trace.on(SolveTopic::XAndUIntermediate)) {
    // Untraced, the same sums element by element, without the arrays the dumps show.
    for (int i = 1; i <= n; ++i) {
      double ax = 0.0;
      for (int j = 1; j <= n; ++j) ax += a(i, j) * x(j, 1);
      double bu = 0.0;
      for (int j = 1; j <= m; ++j) bu += b(i, j) * u(j, 1);
      xnext(i, 1) = ax + (bu + cs(i, t));
    }
    return 1;
  }
  Mat ax = mat2(1, n, 1, 1);
  Mat bu = mat2(1, n, 1, 1);
  Mat ck = column(n, t, cs);
  Mat buc = mat2(1, n, 1, 1);
  mmul(n, n, 1, a, x, ax);
  mmul(n, m, 1, b, u, bu);
  madd(n, 1, bu, ck, buc);
  madd(n, 1, ax, buc, xnext);
  DebugFile& f = trace.file();
  f.dumpMatrix("a in compx", 1, n, 1, n, a);
  f.dumpMatrix("b in compx", 1, n, 1, m, b);
  f.dumpMatrix("cs in compx", 1, n, 0, nt - 1, cs);
  f.dumpMatrix("xk in compx", 1, n, 1, 1, x);
  f.dumpMatrix("uk in compx", 1, m, 1, 1, u);
  f.dumpMatrix("ax", 1, n, 1, 1, ax);
  f.dumpMatrix("bu", 1, n, 1, 1, bu);
  f.dumpMatrix("ck", 1, n, 1, 1, ck);
  f.dumpMatrix("buc", 1, n, 1, 1, buc);
  f.dumpMatrix("xk1", 1, n, 1, 1, xnext);
  return trace.ok();
}

int compuhcfr(int n, int m, int nt, const Mat& g, const Mat& glc, const Mat& x, Mat& u,
              const SolveTrace& trace) {
  (void)nt;
  for (int i = 1; i <= m; ++i) {
    double gx = 0.0;
    for (int j = 1; j <= n; ++j) gx += g(i, j) * x(j, 1);
    u(i, 1) = gx + glc(i, 1);
  }
  if (!trace.on(SolveTopic::XAndUIntermediate)) return 1;
  DebugFile& f = trace.file();
  f.dumpMatrix("xk in compuhcfr", 1, n, 1, 1, x);
  f.dumpMatrix("g in compuhcfr", 1, m, 1, n, g);
  f.dumpMatrix("glc in compuhcfr", 1, m, 1, 1, glc);
  f.dumpMatrix("uk in compuhcfr", 1, m, 1, 1, u);
  return trace.ok();
}

int forwardPass(const SystemArrays& sys, const Mat& x0, const FeedbackRule& rule, Mat& xs, Mat& us,
                const SolveTrace& trace) {
  const int n = sys.n, m = sys.m, nt = sys.nt;
  Mat x = mat2(1, n, 1, 1);
  Mat u = mat2(1, m, 1, 1);
  Mat xnext = mat2(1, n, 1, 1);
  mmov(n, 1, x0, x);
  vcolset(n, 0, x0, xs);
  for (int t = 0; t <= nt - 1; ++t) {
    compu(n, m, nt, t, rule, x, u, trace);
    compx(n, m, nt, t, sys.a, sys.b, sys.cs, x, u, xnext, trace);
    vcolset(n, t + 1, xnext, xs);
    vcolset(m, t, u, us);
    mmov(n, 1, xnext, x);
  }
  return trace.ok();
}

// ---------------------------------------------------------------------------------------------
// The criterion

double sumc(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs, const Mat& us,
            const SolveTrace& trace) {
  const Mat &ws = crit.ws, &wlcs = crit.wlcs, &f = crit.f, &lams = crit.lams;
  const Mat &lamlcs = crit.lamlcs, &xtws = crit.xtws, &utws = crit.utws;
  double sum = 0.0;
  for (int t = 0; t <= nt; ++t) {
    for (int i = 1; i <= n; ++i) sum += ((0.5 * ws(i, t)) * xs(i, t)) * xs(i, t);
    for (int i = 1; i <= n; ++i) sum += wlcs(i, t) * xs(i, t);
    if (t < nt) {
      for (int i = 1; i <= n; ++i) {
        double fu = 0.0;
        for (int j = 1; j <= m; ++j) fu += f(i, j) * us(j, t);
        sum += xs(i, t) * fu;
      }
      for (int j = 1; j <= m; ++j) sum += ((0.5 * lams(j, t)) * us(j, t)) * us(j, t);
      for (int j = 1; j <= m; ++j) sum += lamlcs(j, t) * us(j, t);
    }
  }
  if (crit.tracking == 1) {
    for (int t = 0; t <= nt; ++t) {
      for (int i = 1; i <= n; ++i) sum += ((0.5 * ws(i, t)) * xtws(i, t)) * xtws(i, t);
      if (t < nt)
        for (int j = 1; j <= m; ++j) sum += ((0.5 * lams(j, t)) * utws(j, t)) * utws(j, t);
    }
  }
  if (trace.on(SolveTopic::CriterionValue)) trace.file().dumpScalar("sum in sumc", sum);
  return sum;
}

double SumTracking(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs, const Mat& us,
                   const SolveTrace& trace) {
  const Mat &ws = crit.ws, &lams = crit.lams, &xtws = crit.xtws, &utws = crit.utws;
  const bool traced = trace.on(SolveTopic::CriterionValue);
  Mat dx = mat2(1, n, 1, 1);
  Mat du = mat2(1, m, 1, 1);
  double sum = 0.0;
  for (int t = 0; t <= nt; ++t) {
    double sumk = 0.0;
    for (int i = 1; i <= n; ++i) {
      dx(i, 1) = xs(i, t) - xtws(i, t);
      sumk += ((0.5 * ws(i, t)) * dx(i, 1)) * dx(i, 1);
    }
    sum += sumk;
    if (traced) {
      DebugFile& f = trace.file();
      f.dumpMatrix("wk in SumTracking", 1, n, t, t, ws);
      f.dumpMatrix("xk in SumTracking", 1, n, t, t, xs);
      f.dumpMatrix("xtw in SumTracking", 1, n, t, t, xtws);
      f.dumpMatrix("dx in SumTracking", 1, n, 1, 1, dx);
      f.dumpScalar("sumk in SumTracking after w*x2", sumk);
      f.dumpScalar("sum in SumTracking after w*x2", sum);
    }
    if (t < nt) {
      sumk = 0.0;
      for (int j = 1; j <= m; ++j) {
        du(j, 1) = us(j, t) - utws(j, t);
        sumk += ((0.5 * lams(j, t)) * du(j, 1)) * du(j, 1);
      }
      sum += sumk;
      if (traced) {
        DebugFile& f = trace.file();
        f.dumpMatrix("lamk in SumTracking", 1, m, t, t, lams);
        f.dumpMatrix("uk in SumTracking", 1, m, t, t, us);
        f.dumpMatrix("utw in SumTracking", 1, m, t, t, utws);
        f.dumpMatrix("du in SumTracking", 1, m, 1, 1, du);
        f.dumpScalar("sumk in SumTracking after lam*u2", sumk);
        f.dumpScalar("sum in SumTracking after lam*u2", sum);
      }
    }
  }
  if (traced) trace.file().dumpScalar("sum in SumTracking at bottom", sum);
  return sum;
}

double realisedCriterion(int n, int m, int nt, const CriterionArrays& crit, const Mat& xs,
                         const Mat& us) {
  return crit.tracking == 1 ? SumTracking(n, m, nt, crit, xs, us, SolveTrace())
                            : sumc(n, m, nt, crit, xs, us, SolveTrace());
}

// ---------------------------------------------------------------------------------------------
// Per-period re-solves of the certainty-equivalence methods

namespace {

struct CeSteps {
  int n, m;
  RiccatiWork& w;
  const SolveTrace& trace;
  FeedbackRule* rule;  // the forward-variable form keeps every period's rule
  int before(int t) {
    if (!trace.on(SolveTopic::KAndPIntermediate)) return 1;
    trace.file().writeHeading(" in CompKpgCe - backward loop");
    trace.file().dumpInt("k = ", t);
    return trace.ok();
  }
  int after(int t) {
    if (rule != nullptr) storeRule(n, m, t, w.g, w.glc, *rule);
    if (!trace.on(SolveTopic::KAndPIntermediate)) return 1;
    trace.file().dumpMatrix("thetainv in CompKpgCe", 1, m, 1, m, w.thetainv);
    trace.file().dumpMatrix("kj in CompKpgCe", 1, n, 1, n, w.k);
    trace.file().dumpMatrix("pj in CompKpgCe", 1, n, 1, 1, w.p);
    return trace.ok();
  }
};

int compKpgCeBody(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                  const CriterionArrays& crit, RiccatiWork& w, FeedbackRule* rule,
                  const SolveTrace& trace) {
  if (trace.on(SolveTopic::KAndP)) {
    w.terminal(n, nt, crit.ws, crit.wlcs);
    trace.file().dumpMatrix("kj1 at top of CompKpgCe", 1, n, 1, n, w.k);
    trace.file().dumpMatrix("pj1 at top of CompKpgCe", 1, n, 1, 1, w.p);
  }
  CeSteps steps{n, m, w, trace, rule};
  backward(n, m, nt, k, a, b, cs, crit, w, trace, steps);
  return trace.ok();
}

}  // namespace

int CompKpgCe(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
              const CriterionArrays& crit, RiccatiWork& w, Mat& g, Mat& glc,
              const SolveTrace& trace) {
  compKpgCeBody(n, m, nt, k, a, b, cs, crit, w, nullptr, trace);
  takeRule(n, m, w, g, glc, trace);
  return trace.ok();
}

int CompKpgCeForw(int n, int m, int nt, int k, const Mat& a, const Mat& b, const Mat& cs,
                  const CriterionArrays& crit, RiccatiWork& w, FeedbackRule& rule,
                  const SolveTrace& trace) {
  compKpgCeBody(n, m, nt, k, a, b, cs, crit, w, &rule, trace);
  if (trace.on(SolveTopic::GAndG)) trace.file().dumpMatrix("glcs", 1, m, k, nt - 1, rule.glcs);
  return trace.ok();
}

}  // namespace ovaro
