#include "model/transform/transformations.h"

#include <algorithm>
#include <string>

#include "model/options.h"

namespace ovaro {

namespace {

constexpr const char* kCaption = "Transformation";
constexpr const char* kTouches = "Finishing Touches";
constexpr const char* kWarning = "Warning!";

// The matrix resized to rows x cols: the cells that still fit keep their text, new ones are "0".
TextMatrix resized(const TextMatrix& m, int rows, int cols) {
  TextMatrix out(rows, cols);
  for (int i = 0; i < std::min(rows, m.rows()); ++i)
    for (int j = 0; j < std::min(cols, m.cols()); ++j) out.setCell(i, j, m.cell(i, j));
  return out;
}

// The matrix without row `row` and column `col` (0-based; -1 for neither).
TextMatrix without(const TextMatrix& m, int row, int col) {
  TextMatrix out(m.rows() - (row >= 0 ? 1 : 0), m.cols() - (col >= 0 ? 1 : 0));
  for (int i = 0, oi = 0; i < m.rows(); ++i) {
    if (i == row) continue;
    for (int j = 0, oj = 0; j < m.cols(); ++j) {
      if (j == col) continue;
      out.setCell(oi, oj++, m.cell(i, j));
    }
    ++oi;
  }
  return out;
}

// The n x periods matrix with the one-column `v` in every column.
TextMatrix everyPeriod(const TextMatrix* v, int rows, int periods) {
  TextMatrix out(rows, periods);
  if (v == nullptr) return out;
  for (int i = 0; i < std::min(rows, v->rows()); ++i)
    for (int t = 0; t < periods; ++t) out.setCell(i, t, v->cell(i, 0));
  return out;
}

// The first period's column of a per-period matrix.
TextMatrix firstPeriod(const TextMatrix* tv, int rows) {
  TextMatrix out(rows, 1);
  if (tv == nullptr || tv->cols() == 0) return out;
  for (int i = 0; i < std::min(rows, tv->rows()); ++i) out.setCell(i, 0, tv->cell(i, 0));
  return out;
}

// Holds `id` at its shape for the Model's sizes, zero when new.
void hold(Model& model, MatrixId id) {
  const TextMatrix* m = model.matrix(id);
  model.setMatrix(id, m != nullptr ? resized(*m, rowsOf(model, id), colsOf(model, id))
                                   : TextMatrix(rowsOf(model, id), colsOf(model, id)));
}

// Every held matrix with a side of extent `e` brought to the Model's count of it, the other side
// as it stands; the cells that still fit keep their text.
void fitAlong(Model& model, Extent e) {
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    const TextMatrix* m = model.matrix(id);
    if (m == nullptr) continue;
    const MatrixSpec& s = matrixSpec(id);
    if (s.rows != e && s.cols != e) continue;
    const int rows = s.rows == e ? extentOf(model, e) : m->rows();
    const int cols = s.cols == e ? extentOf(model, e) : m->cols();
    if (rows != m->rows() || cols != m->cols()) model.setMatrix(id, resized(*m, rows, cols));
  }
}

// The table at `count` entries: the first ones kept, new ones blank. The period table has no
// names and gains none.
void fitLabels(LabelTable& t, int count, bool withNames) {
  const auto n = static_cast<std::size_t>(std::max(count, 0));
  t.acronyms.resize(n, blankAcronyms(1).front());
  if (withNames) t.names.resize(n, blankNames(1).front());
}

struct ClassInfo {
  Extent extent;
  Count Dimensions::*count;
  LabelKind labels;
  const char* tooHigh;
  const char* added;
  const char* deleted;
};

ClassInfo info(ElementClass cls) {
  switch (cls) {
    case ElementClass::States:
      return {Extent::N,
              &Dimensions::n,
              LabelKind::States,
              "Index exceeds the number of  \t\t\t\r state variables",
              "Completed Addition of State Variables",
              "Completed Deletion of a State Variable"};
    case ElementClass::Controls:
      return {Extent::M,
              &Dimensions::m,
              LabelKind::Controls,
              "Index exceeds number of control variables remaining.",
              "Completed Addition of Control Variables",
              "Completed Deletion of a Control Variable"};
    case ElementClass::Exogenous:
      return {Extent::L,
              &Dimensions::l,
              LabelKind::Exogenous,
              "Index exceeds the number of  \t\t\t\r exogenous variables",
              "Completed Addition of Exogenous Variables",
              "Completed Deletion of Exogenous Variables"};
    case ElementClass::Parameters:
      return {Extent::NP,
              &Dimensions::np,
              LabelKind::Parameters,
              "Index exceeds the number of  \t\t\t\r uncertain parameters",
              "Added uncertain parameters.",
              "Deleted uncertain parameters."};
    case ElementClass::Observations:
    default:
      return {Extent::NY,
              &Dimensions::ny,
              LabelKind::Observations,
              "Index exceeds the number of \t\t\t\r observation variables",
              "Completed Addition of Observation Variables",
              "Completed Deletion of an Observation Variable"};
  }
}

bool stochasticForParameters(const Model& model) {
  return hasUncertainParameters(model.flags.stochTerms);
}

void checkLead(const Model& model, Prompter& prompter) {
  if (model.flags.forwardVars == opt::kForwardYes && !leadIsValid(model))
    prompter.inform("Maximum Lead must be 1, 2 or 3.", "Error", Icon::Stop);
}

// Constant to time varying: the per-period matrix gets the constant vector in every period; the
// constant one is kept.
void constantToTimeVarying(Model& model, MatrixId constant, MatrixId perPeriod, const char* message,
                           Prompter& prompter) {
  model.setMatrix(perPeriod, everyPeriod(model.matrix(constant), rowsOf(model, perPeriod),
                                         colsOf(model, perPeriod)));
  prompter.inform(message, kCaption);
}

// Time varying to constant, after the data-loss question: the constant vector is the first
// period's column; the per-period matrix is kept but no longer used. On No the flag goes back.
void timeVaryingToConstant(Model& model, MatrixId constant, MatrixId perPeriod, int& flag,
                           int timeVarying, const char* question, const char* message,
                           Prompter& prompter) {
  if (prompter.ask(question, kWarning, Buttons::YesNo, Answer::No, Icon::Exclamation) !=
      Answer::Yes) {
    flag = timeVarying;
    return;
  }
  model.setMatrix(constant, firstPeriod(model.matrix(perPeriod), rowsOf(model, constant)));
  prompter.inform(message, kCaption);
}

}  // namespace

void wConstantToTerminalDifferent(Model& model, Prompter& prompter) {
  const TextMatrix* w = model.matrix(MatrixId::W);
  model.setMatrix(MatrixId::WN, w != nullptr ? *w : TextMatrix(rowsOf(model, MatrixId::WN), 1));
  prompter.inform("Changed W from constant to terminal different", kCaption);
}

void wTerminalDifferentToConstant(Model&, Prompter& prompter) {
  prompter.inform("Changed W from terminal different to constant", kCaption);
}

void wConstantToTimeVarying(Model& model, Prompter& prompter) {
  constantToTimeVarying(model, MatrixId::W, MatrixId::WT, "Changed W from constant to time varying",
                        prompter);
}

void wTimeVaryingToConstant(Model& model, Prompter& prompter) {
  timeVaryingToConstant(model, MatrixId::W, MatrixId::WT, model.flags.wForm, opt::kWTimeVarying,
                        "Data in WT will be lost in this transformation. Proceed?",
                        "Changed W from time varying to constant", prompter);
}

void lambdaConstantToTimeVarying(Model& model, Prompter& prompter) {
  constantToTimeVarying(model, MatrixId::LAMBDA, MatrixId::LAMBDAT,
                        "Changed Lambda from constant to time varying", prompter);
}

void lambdaTimeVaryingToConstant(Model& model, Prompter& prompter) {
  timeVaryingToConstant(
      model, MatrixId::LAMBDA, MatrixId::LAMBDAT, model.flags.lambdaForm, opt::kLambdaTimeVarying,
      "Data in Lambda time-varying matrix will be lost in this transformation. Proceed?",
      "Changed Lambda from time varying to constant", prompter);
}

void xdesConstantToTimeVarying(Model& model, Prompter& prompter) {
  constantToTimeVarying(model, MatrixId::XDES, MatrixId::XDEST,
                        "Changed x desired from constant to time varying", prompter);
}

void udesConstantToTimeVarying(Model& model, Prompter& prompter) {
  constantToTimeVarying(model, MatrixId::UDES, MatrixId::UDEST,
                        "Changed u desired from constant to time varying", prompter);
}

void zConstantToTimeVarying(Model& model, Prompter& prompter) {
  constantToTimeVarying(model, MatrixId::Z, MatrixId::ZT, "Changed Z from constant to time varying",
                        prompter);
}

void zTimeVaryingToConstant(Model& model, Prompter& prompter) {
  timeVaryingToConstant(model, MatrixId::Z, MatrixId::ZT, model.flags.zForm, opt::kZTimeVarying,
                        "Data in ZT will be lost in this transformation. Proceed?",
                        "Changed Z from time varying to constant", prompter);
}

void deterministicToAdditiveNoise(Model& model, Prompter& prompter) {
  hold(model, MatrixId::Q);
  hold(model, MatrixId::XSIS);
  prompter.inform(
      "Changed stochastic terms specification from\t\t\t\r deterministic to stochastic with "
      "additive noise.",
      kCaption);
  prompter.inform(
      "Please add data for additive noise terms, Q and/or XSIS\t\t\t\r via the Data:Additive "
      "Noise Terms menu option.",
      kTouches);
}

namespace {

// The uncertain parameters' arrays at the Model's np, and every other matrix with a parameter
// side brought to it.
void holdParameterArrays(Model& model) {
  for (MatrixId id : {MatrixId::TH0, MatrixId::TH0DIFF, MatrixId::SITT0, MatrixId::ITHN})
    hold(model, id);
  fitAlong(model, Extent::NP);
  model.parameters = LabelTable::blank(model.dims.np.value, true);
}

}  // namespace

void deterministicToParameterUncertainty(Model& model, Prompter& prompter) {
  holdParameterArrays(model);
  hold(model, MatrixId::Q);
  hold(model, MatrixId::XSIS);
  prompter.inform(
      "Changed stochastic terms specification from deterministic\t\t\t\r to stochastic with "
      "uncertain parameters.",
      kCaption);
  prompter.inform(
      "Please add acronyms for the uncertain parameters via\t\t\t\r the Data:Acronyms menu "
      "option.  Also add data for\t\t\t\r the matrices Q and/or XSIS as well as TH0, SITTO and "
      "ITHN\t\t\t\r via the Data:Additive Noise Terms and the\t\t\t\r Data: Parameter "
      "Uncertainty menu options",
      kTouches);
}

void additiveNoiseToParameterUncertainty(Model& model, Prompter& prompter) {
  holdParameterArrays(model);
  prompter.inform(
      "Changed stochastic term specification from\t\t\t\r stochastic with additive uncertainty "
      "to stochastic\t\t\t\r with parameter uncertainty.",
      kCaption);
  prompter.inform(
      "Please add acronyms for the uncertain parameters via\t\t\t\r the Data:Acronyms menu "
      "option.  Also add data for\t\t\t\r the TH0, SITTO and ITHN matrices via the \t\t\t\r Data: "
      "Parameter Uncertainty menu option.",
      kTouches);
}

void parameterUncertaintyToMeasurementError(Model& model, Prompter& prompter) {
  const int n = model.dims.n.value, np = model.dims.np.value, ny = model.dims.ny.value;
  model.setMatrix(MatrixId::D, TextMatrix::identity(np));
  if (ny == n) {
    model.setMatrix(MatrixId::H, TextMatrix::identity(n));
  } else {
    model.setMatrix(MatrixId::H, TextMatrix(ny, n));
    prompter.inform(
        "The state and observation vectors are not the same size.  H matrix initialized to zero.",
        kWarning);
  }
  for (MatrixId id : {MatrixId::SIXX0, MatrixId::SITX0, MatrixId::R, MatrixId::GAM, MatrixId::ZETAS,
                      MatrixId::ETAS, MatrixId::TH0DEV, MatrixId::X0DEV})
    model.setMatrix(id, TextMatrix(rowsOf(model, id), colsOf(model, id)));
  fitAlong(model, Extent::NY);
  model.observations = LabelTable::blank(ny, true);
  prompter.inform(
      "Changed stochastic terms specification from stochastic\t\t\t\r with parameter "
      "uncertainty to stoch with measurement error",
      kCaption);
  prompter.inform(
      "Please add acronyms for the observation variables and\t\t\t\r and also data for the "
      "matrices under the menu option\t\t\t\r Data:Measurement Error Terms.",
      kTouches);
}

void measurementErrorToDeterministic(Model& model, Prompter& prompter) {
  for (MatrixId id : {MatrixId::Q, MatrixId::XSIS, MatrixId::TH0, MatrixId::TH0DIFF,
                      MatrixId::SITT0, MatrixId::ITHN})
    model.dropMatrix(id);
  model.randomSwitches = RandomSwitches{};
  model.flags.randomSource = opt::kReadIn;
  model.dims.np.set(0);
  model.dims.ny.set(0);
  model.dims.nmc.set(0);
  // The measurement-error group, G, g and N stay held, as for every model, at the new sizes: with
  // no parameters and no observations their data are gone.
  for (MatrixId id :
       {MatrixId::D, MatrixId::H, MatrixId::SIXX0, MatrixId::SITX0, MatrixId::R, MatrixId::GAM,
        MatrixId::ZETAS, MatrixId::ETAS, MatrixId::TH0DEV, MatrixId::X0DEV})
    model.setMatrix(id, TextMatrix(rowsOf(model, id), colsOf(model, id)));
  fitAlong(model, Extent::NP);
  model.parameters = LabelTable::blank(0, true);
  model.observations = LabelTable::blank(0, true);
  prompter.inform(
      "Changed stochastic terms specification from stochastic\t\t\r with measurement error to "
      "deterministic",
      kCaption);
}

void changeTerminalPeriod(Model& model, int oldNt, Prompter& prompter) {
  (void)oldNt;
  const SpecFlags& f = model.flags;
  const int nt = model.dims.nt.value;
  const bool perPeriodForm = f.zForm == opt::kZTimeVarying || f.wForm == opt::kWTimeVarying ||
                             f.lambdaForm == opt::kLambdaTimeVarying ||
                             f.xdesForm == opt::kXdesTimeVarying ||
                             f.udesForm == opt::kUdesTimeVarying;
  if (perPeriodForm) fitLabels(model.periods, nt, false);
  auto refit = [&](MatrixId id, bool inUse) {
    const TextMatrix* m = model.matrix(id);
    if (inUse && m != nullptr) model.setMatrix(id, resized(*m, m->rows(), colsOf(model, id)));
  };
  refit(MatrixId::ZT, f.zForm == opt::kZTimeVarying);
  refit(MatrixId::LAMBDAT, f.lambdaForm == opt::kLambdaTimeVarying);
  refit(MatrixId::UDEST, f.udesForm == opt::kUdesTimeVarying);
  refit(MatrixId::WT, f.wForm == opt::kWTimeVarying);
  refit(MatrixId::XDEST, f.xdesForm == opt::kXdesTimeVarying || f.xdesForm == opt::kXdesBoth);
  // Under additive noise alone XSIS keeps the width it has.
  refit(MatrixId::XSIS,
        f.stochTerms == opt::kParameterUncertainty || f.stochTerms == opt::kMeasurementError);
  refit(MatrixId::ZETAS, f.stochTerms == opt::kMeasurementError);
  refit(MatrixId::ETAS, f.stochTerms == opt::kMeasurementError);
  prompter.inform("Changed the terminal time period.", kCaption);
}

void addElements(Model& model, ElementClass cls, int oldCount, Prompter& prompter) {
  if (cls == ElementClass::Parameters && !stochasticForParameters(model)) {
    model.dims.np.set(oldCount);
    prompter.inform("Complexity is not stochastic - parameter not added.", kWarning);
    return;
  }
  const ClassInfo c = info(cls);
  if (cls == ElementClass::States) checkLead(model, prompter);
  fitAlong(model, c.extent);
  fitLabels(model.labels(c.labels), (model.dims.*c.count).value, true);
  prompter.inform(c.added, kCaption);
  if (cls == ElementClass::States && model.flags.stochTerms == opt::kMeasurementError &&
      prompter.ask("Add an observation variable also?", "Observation Vector", Buttons::YesNo,
                   Answer::Yes) == Answer::Yes) {
    const int oldNy = model.dims.ny.value;
    model.dims.ny.set(oldNy + (model.dims.n.value - oldCount));
    fitAlong(model, Extent::NY);
    fitLabels(model.observations, model.dims.ny.value, true);
    prompter.inform("Completed Addition of an Observation Variable", kCaption);
  }
}

bool deleteElement(Model& model, ElementClass cls, int index, int count, Prompter& prompter) {
  const ClassInfo c = info(cls);
  if (cls == ElementClass::Parameters && !stochasticForParameters(model)) {
    prompter.inform("Complexity is not stochastic - parameter not deleted.", kWarning);
    return false;
  }
  if (index < 1) {
    prompter.inform("Index too small.  \t\t\t\r It must be greater than zero.", kWarning);
    return false;
  }
  if (index > count) {
    prompter.inform(c.tooHigh, kWarning);
    return false;
  }
  if (prompter.ask("Data will be lost in the deletion. Proceed?", kWarning, Buttons::YesNo,
                   Answer::Yes) != Answer::Yes)
    return false;
  if (cls == ElementClass::States) checkLead(model, prompter);
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    const TextMatrix* m = model.matrix(id);
    if (m == nullptr) continue;
    const MatrixSpec& s = matrixSpec(id);
    const int row = s.rows == c.extent && index <= m->rows() ? index - 1 : -1;
    const int col = s.cols == c.extent && index <= m->cols() ? index - 1 : -1;
    if (row >= 0 || col >= 0) model.setMatrix(id, without(*m, row, col));
  }
  LabelTable& t = model.labels(c.labels);
  const auto at = static_cast<std::ptrdiff_t>(index - 1);
  if (index <= static_cast<int>(t.acronyms.size())) t.acronyms.erase(t.acronyms.begin() + at);
  if (index <= static_cast<int>(t.names.size())) t.names.erase(t.names.begin() + at);
  (model.dims.*c.count).set(count - 1);
  prompter.inform(c.deleted, kCaption);
  if (cls == ElementClass::States && model.flags.stochTerms == opt::kMeasurementError &&
      prompter.ask("Delete an observation variable also?", "Observation Vector", Buttons::YesNo,
                   Answer::Yes) == Answer::Yes)
    deleteElement(model, ElementClass::Observations, index, model.dims.ny.value, prompter);
  return true;
}

}  // namespace ovaro
