#include "io/veldpc.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <vector>

#include "model/conversion.h"
#include "model/safe_file.h"

namespace ovaro {

namespace {

constexpr const char* kWarning = "Warning!";

struct FormRule {
  int SpecFlags::*flag;
  int required;
  const char* message;
};

constexpr std::array<FormRule, 6> kFormRules = {{
    {&SpecFlags::criterionForm, opt::kQuadraticTracking,
     "Criterion Specification Not As Reguired for VELDPC."},
    {&SpecFlags::zForm, opt::kZTimeVarying,
     "Exogenous Variable Specification Not As Reguired for VELDPC."},
    {&SpecFlags::wForm, opt::kWTerminalDifferent,
     "State Penalty Matrix Specification Not As Reguired for VELDPC."},
    {&SpecFlags::lambdaForm, opt::kLambdaConstant,
     "Control Penalty Matrix Specification Not As Reguired for VELDPC."},
    {&SpecFlags::xdesForm, opt::kXdesTimeVarying,
     "State Desired Path Specification Not As Reguired for VELDPC."},
    {&SpecFlags::udesForm, opt::kUdesTimeVarying,
     "Control Desired Path Specification Not As Reguired for VELDPC."},
}};

// Blank-led words: "   w1   w2" for {w1, w2}.
std::string words(std::initializer_list<std::string> items) {
  std::string s;
  for (const std::string& w : items) s += "   " + w;
  return s;
}

std::string bit(bool on) {
  return on ? "1" : "0";
}

// The additive-noise, parameter-uncertainty and measurement-error words of line 3: each group of
// stochastic terms switches on its own word and those of the groups it contains.
std::array<std::string, 4> stochWords(int stochTerms) {
  switch (stochTerms) {
    case opt::kMeasurementError:
      return {"1", "1", "1", "1"};
    case opt::kParameterUncertainty:
      return {"0", "1", "1", "1"};
    case opt::kAdditiveNoise:
      return {"0", "0", "1", "1"};
    default:
      return {"0", "0", "0", "1"};
  }
}

// One matrix as a sparse block: the count of non-zero elements, then " row col  text " for each
// (counted from 1); " -99" when there are none. `diagonal` writes a vector as the diagonal of a
// square matrix.
void appendSparse(std::string& out, const TextMatrix& t, bool diagonal = false) {
  std::string lines;
  int count = 0;
  std::array<char, 96> buf{};
  for (int i = 0; i < t.rows(); ++i)
    for (int j = 0; j < t.cols(); ++j) {
      const std::string cell(t.cell(i, j));
      if (!(std::fabs(toDouble(cell)) > 0.0)) continue;
      ++count;
      const int col = diagonal ? i + 1 : j + 1;
      std::snprintf(buf.data(), buf.size(), " %d %d  %-15s \r\n", i + 1, col, cell.c_str());
      lines += buf.data();
    }
  std::snprintf(buf.data(), buf.size(), "%4d\r\n", count == 0 ? -99 : count);
  out += buf.data();
  out += lines;
}

// Gives the model ny = n observation variables, reshaping what depends on their number.
void observeEveryState(Model& model) {
  model.dims.ny.set(model.dims.n.value);
  model.observations = LabelTable::blank(model.dims.ny.value, true);
  for (int k = 0; k < kMatrixCount; ++k) {
    const auto id = static_cast<MatrixId>(k);
    const MatrixSpec& s = matrixSpec(id);
    if (model.holds(id) && (s.rows == Extent::NY || s.cols == Extent::NY))
      model.setMatrix(id, TextMatrix(rowsOf(model, id), colsOf(model, id)));
  }
}

}  // namespace

std::optional<std::string> veldpcContent(Model& model, Prompter& prompter) {
  for (const FormRule& r : kFormRules)
    if (model.flags.*(r.flag) != r.required) {
      prompter.inform(r.message, kWarning, Icon::Exclamation);
      return std::nullopt;
    }
  prompter.inform(
      "Please check that Lambda, Q and R are nonsingular.  If singular VELDPC may have problems.",
      kWarning, Icon::Exclamation);
  std::string out = model.acronym + "\r\n";

  const Dimensions& d = model.dims;
  auto warnIf = [&](bool cond, const char* text) {
    if (cond) prompter.inform(text, kWarning, Icon::Exclamation);
  };
  warnIf(d.n.value > 3, "State vector exceeds dimension used in some versions of VELDPC.");
  warnIf(d.m.value > 2, "Control vector exceeds dimension used in some versions of VELDPC.");
  warnIf(d.l.value > 1,
         "Exogenous variable vector exceeds dimension used in some versions of VELDPC.");
  warnIf(d.nt.value > 7, "Time periods exceed dimension used in some versions of VELDPC.");
  warnIf(d.np.value > 10,
         "Uncertain parameters exceeds dimension used in some versions of VELDPC.");
  if (d.ny.value == 0) {
    prompter.inform("Number of observation variables is zero.  Will set to number of states.",
                    kWarning, Icon::Exclamation);
    observeEveryState(model);
  }
  warnIf(d.ny.value > 3, "Observation variables exceed dimension used in some versions of VELDPC.");
  warnIf(d.nmc.value > 100,
         "Number of Monte Carlo runs exceed dimension used in some versions of VELDPC.");

  const SpecFlags& f = model.flags;
  const bool me = f.stochTerms == opt::kMeasurementError;
  out += words({d.n.text, d.m.text}) + " " + words({d.l.text, d.np.text}) + " " +
         words({d.ny.text, d.ntMinus1.text}) + " " + words({d.nmc.text}) + " \r\n";
  const std::array<std::string, 4> s = stochWords(f.stochTerms);
  out += words({s[0], s[1]}) + " " + words({s[2], s[3]}) + " " +
         words({bit(f.randomSource == opt::kReadIn), bit(f.option452 == opt::kOption453)}) + "\r\n";
  out += words({"0", "0"}) + " " + words({"0", bit(f.option450 == opt::kOption450 && !me)}) + " " +
         words({"0", "0"}) + "\r\n";

  auto put = [&](MatrixId id, bool diagonal = false) {
    if (const TextMatrix* t = model.matrix(id)) appendSparse(out, *t, diagonal);
  };
  const bool forward = f.forwardVars == opt::kForwardYes;
  if (f.systemForm == opt::kPindyck) {
    for (MatrixId id : {MatrixId::A0, MatrixId::A1, MatrixId::B1, MatrixId::C1}) put(id);
    if (me) put(MatrixId::D);
    if (forward) put(MatrixId::DHAT1), put(MatrixId::DHAT2);
  } else {
    for (MatrixId id : {MatrixId::A, MatrixId::B, MatrixId::C}) put(id);
    if (me) put(MatrixId::D);
    if (forward) put(MatrixId::D1), put(MatrixId::D2);
  }
  // The state penalty is W for the periods before the last and WN for the last, each a
  // diagonal matrix; the control penalty is the diagonal LAMBDA.
  put(MatrixId::W, true);
  put(MatrixId::WN, true);
  put(MatrixId::LAMBDA, true);
  put(MatrixId::ZT);
  put(model.holds(MatrixId::XDEST) ? MatrixId::XDEST : MatrixId::XDES);
  put(model.holds(MatrixId::UDEST) ? MatrixId::UDEST : MatrixId::UDES);
  put(MatrixId::X0);
  put(MatrixId::TH0);
  if (me) put(MatrixId::SIXX0), put(MatrixId::SITX0);
  put(MatrixId::SITT0);
  put(MatrixId::GAM);
  put(MatrixId::XSIS);
  if (me)
    for (MatrixId id : {MatrixId::ZETAS, MatrixId::ETAS, MatrixId::TH0DEV, MatrixId::X0DEV})
      put(id);
  return out;
}

int writeVeldpcFile(const std::string& path, Model& model, Prompter& prompter) {
  const std::optional<std::string> content = veldpcContent(model, prompter);
  if (!content || !replaceFileContents(path, *content, false)) return 0;
  prompter.inform("VELDPC input file written.", "OVARO", Icon::Information);
  return 1;
}

}  // namespace ovaro
