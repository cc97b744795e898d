#include "model/model.h"

#include <algorithm>
#include <climits>
#include <string>
#include <utility>

#include "model/conversion.h"

namespace ovaro {

void Count::set(int v) {
  value = v;
  text = std::to_string(v);
}

void Count::setText(std::string t) {
  text = std::move(t);
  value = toInt(text);
}

void Dimensions::recomputePeriods() {
  // Computed in 64 bits: the period numbers come from files and may be anything.
  const long long count = static_cast<long long>(terminalPeriod.value) - initialPeriod.value + 1;
  nt.set(static_cast<int>(std::clamp<long long>(count, INT_MIN + 1, INT_MAX)));
  ntMinus1.set(nt.value - 1);
}

void Dimensions::setToleranceText(std::string t) {
  toleranceText = std::move(t);
  tolerance = toDouble(toleranceText);
}

namespace {

using E = Extent;

constexpr MatrixSpec kSpecs[kMatrixCount] = {
    {MatrixId::A, "A", E::N, E::N, "A Matrix"},
    {MatrixId::B, "B", E::N, E::M, "B Matrix"},
    {MatrixId::C, "C", E::N, E::L, "C Matrix"},
    {MatrixId::D1, "D1", E::N, E::N, "D1 Matrix"},
    {MatrixId::D2, "D2", E::N, E::N, "D2 Matrix"},
    {MatrixId::D3, "D3", E::N, E::N, "D3 Matrix"},
    {MatrixId::A0, "A0", E::N, E::N, "A0 Matrix"},
    {MatrixId::A1, "A1", E::N, E::N, "A1 Matrix"},
    {MatrixId::B1, "B1", E::N, E::M, "B1 Matrix"},
    {MatrixId::C1, "C1", E::N, E::L, "C1 Matrix"},
    {MatrixId::DHAT1, "DHAT1", E::N, E::N, "DHAT1 Matrix"},
    {MatrixId::DHAT2, "DHAT2", E::N, E::N, "DHAT2 Matrix"},
    {MatrixId::DHAT3, "DHAT3", E::N, E::N, "DHAT3 Matrix"},
    {MatrixId::Z, "Z", E::L, E::One, "Z Elements"},
    {MatrixId::ZT, "ZT", E::L, E::NTm1, "ZT Elements"},
    {MatrixId::X0, "X0", E::N, E::One, "X0 Vector"},
    {MatrixId::W, "W", E::N, E::One, "W  - Enter Diagonal Elements Only"},
    {MatrixId::WN, "WN", E::N, E::One, "WN  - Enter Diagonal Elements Only"},
    {MatrixId::WT, "WT", E::N, E::NT, "WT - Enter Diag Elem Only"},
    {MatrixId::LAMBDA, "LAMBDA", E::M, E::One, "LAMBDA  - Enter Diagonal Elements Only"},
    {MatrixId::LAMBDAT, "LAMBDAT", E::M, E::NTm1, "LAMBDAT - Enter Diag Elem Only"},
    {MatrixId::XDES, "XDES", E::N, E::One, "XDES Matrix - Constant"},
    {MatrixId::XDEST, "XDEST", E::N, E::NT, "XDES Matrix - Time Varying"},
    {MatrixId::UDES, "UDES", E::M, E::One, "UDES Matrix - Constant"},
    {MatrixId::UDEST, "UDEST", E::M, E::NTm1, "UDES Matrix - Time Varying"},
    {MatrixId::Q, "Q", E::N, E::N, "Q Matrix"},
    {MatrixId::XSIS, "XSIS", E::N, E::NTm1, "XSIS Matrix"},
    {MatrixId::TH0, "TH0", E::NP, E::One, "TH0 Vector"},
    {MatrixId::TH0DIFF, "TH0DIFF", E::NP, E::One, "TH0DIFF Vector"},
    {MatrixId::SITT0, "SITT0", E::NP, E::NP, "SITTO Matrix"},
    {MatrixId::ITHN, "ITHN", E::NP, E::Three, "ITHN Matrix"},
    {MatrixId::D, "D", E::NP, E::NP, "D Matrix"},
    {MatrixId::H, "H", E::NY, E::N, "H Matrix"},
    {MatrixId::SIXX0, "SIXX0", E::N, E::N, "SIXX0 Matrix"},
    {MatrixId::SITX0, "SITX0", E::NP, E::N, "SITX0 Matrix"},
    {MatrixId::R, "R", E::NY, E::NY, "R Matrix"},
    {MatrixId::GAM, "GAM", E::NP, E::NP, "GAM Matrix"},
    {MatrixId::ZETAS, "ZETAS", E::NY, E::NTm1, "ZETAS Matrix"},
    {MatrixId::ETAS, "ETAS", E::NP, E::NTm1, "ETAS Matrix"},
    {MatrixId::TH0DEV, "TH0DEV", E::NP, E::One, "TH0DEV Matrix"},
    {MatrixId::X0DEV, "X0DEV", E::N, E::One, "X0DEV Matrix"},
    {MatrixId::G, "G", E::M, E::N, "G Handcrafted Fb Rule Matrix"},
    {MatrixId::g, "g", E::M, E::One, "g Handcrafted Fb Rule Vector"},
    {MatrixId::N, "N", E::NP, E::M, "N - Policy to Parameter Effect"},
};

constexpr bool specsInOrder() {
  for (int i = 0; i < kMatrixCount; ++i)
    if (static_cast<int>(kSpecs[i].id) != i) return false;
  return true;
}
static_assert(specsInOrder(), "matrix specs must be listed in MatrixId order");

std::size_t slot(MatrixId id) {
  return static_cast<std::size_t>(id);
}

// Lead index of a lead matrix (1..3), 0 for any other matrix.
int leadIndex(MatrixId id) {
  switch (id) {
    case MatrixId::D1:
    case MatrixId::DHAT1:
      return 1;
    case MatrixId::D2:
    case MatrixId::DHAT2:
      return 2;
    case MatrixId::D3:
    case MatrixId::DHAT3:
      return 3;
    default:
      return 0;
  }
}

bool measurementErrorMatrix(MatrixId id) {
  switch (id) {
    case MatrixId::D:
    case MatrixId::H:
    case MatrixId::SIXX0:
    case MatrixId::SITX0:
    case MatrixId::R:
    case MatrixId::GAM:
    case MatrixId::ZETAS:
    case MatrixId::ETAS:
    case MatrixId::TH0DEV:
    case MatrixId::X0DEV:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool hasNoiseTerms(int stochTerms) {
  return stochTerms == opt::kAdditiveNoise || stochTerms == opt::kParameterUncertainty ||
         stochTerms == opt::kMeasurementError;
}

bool hasUncertainParameters(int stochTerms) {
  return stochTerms == opt::kParameterUncertainty || stochTerms == opt::kMeasurementError;
}

const MatrixSpec& matrixSpec(MatrixId id) {
  return kSpecs[slot(id)];
}

std::optional<MatrixId> matrixByName(std::string_view name) {
  for (const auto& s : kSpecs)
    if (name == s.name) return s.id;
  return std::nullopt;
}

const TextMatrix* Model::matrix(MatrixId id) const {
  const auto& m = matrices_[slot(id)];
  return m ? &*m : nullptr;
}

TextMatrix* Model::matrix(MatrixId id) {
  auto& m = matrices_[slot(id)];
  return m ? &*m : nullptr;
}

void Model::setMatrix(MatrixId id, TextMatrix m) {
  matrices_[slot(id)] = std::move(m);
}
void Model::dropMatrix(MatrixId id) {
  matrices_[slot(id)].reset();
}
void Model::dropAllMatrices() {
  for (auto& m : matrices_) m.reset();
}

LabelTable& Model::labels(LabelKind kind) {
  switch (kind) {
    case LabelKind::States:
      return states;
    case LabelKind::Controls:
      return controls;
    case LabelKind::Exogenous:
      return exogenous;
    case LabelKind::Periods:
      return periods;
    case LabelKind::Observations:
      return observations;
    case LabelKind::Parameters:
      break;
  }
  return parameters;
}

const LabelTable& Model::labels(LabelKind kind) const {
  return const_cast<Model&>(*this).labels(kind);
}

int extentOf(const Model& model, Extent e) {
  const Dimensions& d = model.dims;
  int v = 0;
  switch (e) {
    case Extent::N:
      v = d.n.value;
      break;
    case Extent::M:
      v = d.m.value;
      break;
    case Extent::L:
      v = d.l.value;
      break;
    case Extent::NP:
      v = d.np.value;
      break;
    case Extent::NY:
      v = d.ny.value;
      break;
    case Extent::NT:
      v = d.nt.value;
      break;
    case Extent::NTm1:
      v = d.nt.value - 1;
      break;
    case Extent::One:
      v = 1;
      break;
    case Extent::Three:
      v = 3;
      break;
  }
  return std::max(v, 0);
}

int rowsOf(const Model& model, MatrixId id) {
  return extentOf(model, matrixSpec(id).rows);
}
int colsOf(const Model& model, MatrixId id) {
  return extentOf(model, matrixSpec(id).cols);
}

bool calledFor(const Model& model, MatrixId id) {
  const SpecFlags& f = model.flags;
  const bool regular = f.systemForm == opt::kRegular;
  const bool pindyck = f.systemForm == opt::kPindyck;
  const bool forward = f.forwardVars == opt::kForwardYes;
  switch (id) {
    case MatrixId::A:
    case MatrixId::B:
    case MatrixId::C:
      return regular;
    case MatrixId::D1:
    case MatrixId::D2:
    case MatrixId::D3:
      return regular && forward;
    case MatrixId::A0:
    case MatrixId::A1:
    case MatrixId::B1:
    case MatrixId::C1:
      return pindyck;
    case MatrixId::DHAT1:
    case MatrixId::DHAT2:
    case MatrixId::DHAT3:
      return pindyck && forward;
    case MatrixId::Z:
      return f.zForm == opt::kZConstant;
    case MatrixId::ZT:
      return f.zForm == opt::kZTimeVarying;
    case MatrixId::W:
      return f.wForm == opt::kWConstant || f.wForm == opt::kWTerminalDifferent;
    case MatrixId::WN:
      return f.wForm == opt::kWTerminalDifferent;
    case MatrixId::WT:
      return f.wForm == opt::kWTimeVarying;
    case MatrixId::LAMBDA:
      return f.lambdaForm == opt::kLambdaConstant;
    case MatrixId::LAMBDAT:
      return f.lambdaForm == opt::kLambdaTimeVarying;
    case MatrixId::XDES:
      return f.xdesForm == opt::kXdesConstant || f.xdesForm == opt::kXdesBoth;
    case MatrixId::XDEST:
      return f.xdesForm == opt::kXdesTimeVarying || f.xdesForm == opt::kXdesBoth;
    case MatrixId::UDES:
      return f.udesForm == opt::kUdesConstant;
    case MatrixId::UDEST:
      return f.udesForm == opt::kUdesTimeVarying;
    case MatrixId::Q:
    case MatrixId::XSIS:
      return hasNoiseTerms(f.stochTerms);
    case MatrixId::TH0:
    case MatrixId::TH0DIFF:
    case MatrixId::SITT0:
    case MatrixId::ITHN:
      return hasUncertainParameters(f.stochTerms);
    default:
      // X0, the measurement-error group, G, g and N are always held.
      return true;
  }
}

bool leadIsValid(const Model& model) {
  const int lead = model.dims.maxLead.value;
  return model.flags.forwardVars == opt::kForwardYes && lead >= 1 && lead <= 3;
}

bool storedInFile(const Model& model, MatrixId id) {
  if (!calledFor(model, id)) return false;
  if (const int lead = leadIndex(id); lead > 0)
    return leadIsValid(model) && lead <= model.dims.maxLead.value;
  if (measurementErrorMatrix(id)) return model.flags.stochTerms == opt::kMeasurementError;
  if (id == MatrixId::N) return model.flags.policyToParam == opt::kPolicyYes;
  return true;
}

void allocateModelArrays(Model& model) {
  const Dimensions& d = model.dims;
  model.states = LabelTable::blank(d.n.value, true);
  model.controls = LabelTable::blank(d.m.value, true);
  model.exogenous = LabelTable::blank(d.l.value, true);
  model.periods = LabelTable::blank(d.nt.value, false);
  model.observations = LabelTable::blank(d.ny.value, true);
  model.parameters = LabelTable::blank(d.np.value, true);
  model.description.clear();
  model.dropAllMatrices();
  for (const auto& s : kSpecs)
    if (calledFor(model, s.id))
      model.setMatrix(s.id, TextMatrix(rowsOf(model, s.id), colsOf(model, s.id)));
  model.allocated = true;
}

void freeModelArrays(Model& model) {
  model.dropAllMatrices();
  for (LabelTable* t : {&model.states, &model.controls, &model.exogenous, &model.periods,
                        &model.observations, &model.parameters})
    *t = LabelTable{};
  model.allocated = false;
}

void clearModel(Model& model) {
  freeModelArrays(model);
  model.fileVersion = 0;
  model.acronym.clear();
  model.name.clear();
  model.description.clear();
  model.dims = Dimensions{};
  model.flags = SpecFlags{};
  model.randomSwitches = RandomSwitches{};
  model.display = ResultsDisplayWords{};
}

void blankLabels(Model& model) {
  for (LabelKind k : {LabelKind::States, LabelKind::Controls, LabelKind::Exogenous,
                      LabelKind::Periods, LabelKind::Observations, LabelKind::Parameters}) {
    LabelTable& t = model.labels(k);
    const int count = static_cast<int>(t.acronyms.size());
    t = LabelTable::blank(count, k != LabelKind::Periods);
  }
}

std::string checkSizes(const Model& model) {
  const Dimensions& d = model.dims;
  std::string problems;
  auto add = [&problems](const std::string& what) {
    if (!problems.empty()) problems += "; ";
    problems += what;
  };
  auto within = [&add](const char* label, int v, int lo, int hi) {
    if (v < lo || v > hi)
      add(std::string(label) + " = " + std::to_string(v) + " (allowed " + std::to_string(lo) +
          " to " + std::to_string(hi) + ")");
  };
  within("n", d.n.value, 0, kMaxVariables);
  within("m", d.m.value, 0, kMaxVariables);
  within("l", d.l.value, 0, kMaxVariables);
  within("np", d.np.value, 0, kMaxVariables);
  within("ny", d.ny.value, 0, kMaxVariables);
  within("nmc", d.nmc.value, 0, kMaxRuns);
  within("nt (terminal period - initial period + 1)", d.nt.value, 1, kMaxPeriods);
  if (!problems.empty()) return problems;

  long long cells = 0;
  for (const auto& s : kSpecs)
    if (calledFor(model, s.id))
      cells += static_cast<long long>(rowsOf(model, s.id)) * colsOf(model, s.id);
  if (cells > kMaxCells)
    add("the matrices would need " + std::to_string(cells) + " cells (allowed " +
        std::to_string(kMaxCells) + ")");
  return problems;
}

}  // namespace ovaro
