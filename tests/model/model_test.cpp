#include "model/model.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

#include "model/conversion.h"
#include "support/model_fixtures.h"

namespace ovaro {
namespace {

using testing::makeModel;
using testing::ModelShape;

TEST(TextMatrix, FreshCellsReadZeroAndCellsKeepUpToFifteenCharactersVerbatim) {
  TextMatrix t(2, 3);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(t.cell(i, j), "0");
  EXPECT_EQ(TextMatrix::identity(3).cell(1, 1), "1");
  EXPECT_EQ(TextMatrix::identity(3).cell(1, 2), "0");
  EXPECT_EQ(TextMatrix(-2, 4).rows(), 0);  // negative counts are taken as 0
  EXPECT_TRUE(t.setCell(0, 1, "123456789012345"));
  EXPECT_FALSE(t.setCell(0, 2, "1234567890123456"));  // one too many: shortened
  EXPECT_EQ(t.cell(0, 2), "123456789012345");
  EXPECT_EQ(LabelTable::blank(3, true).names, std::vector<std::string>(3, std::string(48, ' ')));
  EXPECT_TRUE(LabelTable::blank(4, false).names.empty());
}

// The leading number of the text, else 0; 0.1 must be the same bits as the literal, whatever the
// locale; integers saturate.
TEST(Conversion, DecimalTextToNumbers) {
  const double inf = std::numeric_limits<double>::infinity();
  const std::pair<const char*, double> doubles[] = {
      {"1.0E-06", 1.0e-6}, {"  -2.5", -2.5}, {"+3", 3.0},    {"12abc", 12.0},  {".5", 0.5},
      {"abc", 0.0},        {"+-1", 0.0},     {"1e999", inf}, {"-1e999", -inf}, {"0.1", 0.1}};
  for (const auto& [text, value] : doubles) EXPECT_EQ(toDouble(text), value) << text;
  const std::pair<const char*, int> ints[] = {{" -7x", -7},
                                              {"x1", 0},
                                              {"99999999999", std::numeric_limits<int>::max()},
                                              {"-99999999999", std::numeric_limits<int>::min()}};
  for (const auto& [text, value] : ints) EXPECT_EQ(toInt(text), value) << text;
}

TEST(Conversion, TextMatricesBecomeOneBasedAndPeriodArrays) {
  TextMatrix t(2, 3);
  t.setCell(0, 2, "2.5");
  t.setCell(1, 1, "-4");
  const Mat a = toMat(t), p = toPeriodMat(t);  // p: columns are periods 0..2
  EXPECT_EQ((std::array{a.rlo(), a.rhi(), a.clo(), a.chi(), p.clo(), p.chi()}),
            (std::array{1, 2, 1, 3, 0, 2}));
  EXPECT_EQ((std::array{a(1, 3), p(1, 2), toVec(t)(2), double(toIMat(t)(2, 2))}),
            (std::array{2.5, 2.5, 0.0, -4.0}));
}

TEST(Model, CountsKeepTextAndNumberTogether) {
  Dimensions d;
  d.terminalPeriod.set(2030);
  d.initialPeriod.set(2021);
  d.recomputePeriods();
  EXPECT_EQ(d.nt.value, 10);
  EXPECT_EQ(d.ntMinus1.text, "9");
  d.n.setText("abc");  // text that is not a number reads as 0
  EXPECT_EQ(d.n.value, 0);
  EXPECT_EQ(d.n.text, "abc");
}

// Which matrices a model holds, and of what width, follows its flags: the measurement-error group,
// X0, G, g and N even in a deterministic model; per-period arrays of nt or nt - 1 columns, none
// for the controls of a one-period model.
TEST(Model, AllocationFollowsTheFlags) {
  const ModelShape s{.n = 3, .m = 2, .l = 1, .np = 2, .ny = 1, .terminalPeriod = 5};  // nt = 5
  ModelShape tv = s;
  tv.flags.systemForm = opt::kPindyck, tv.flags.forwardVars = opt::kForwardYes, tv.maxLead = 2;
  tv.flags.zForm = opt::kZTimeVarying, tv.flags.wForm = opt::kWTimeVarying;
  tv.flags.lambdaForm = opt::kLambdaTimeVarying, tv.flags.xdesForm = opt::kXdesBoth;
  tv.flags.udesForm = opt::kUdesTimeVarying;
  ModelShape one = tv;
  one.terminalPeriod = 1;
  const Model det = makeModel(s), mod = makeModel(tv, opt::kParameterUncertainty),
              single = makeModel(one, opt::kAdditiveNoise);
  struct Held {
    const Model* model;
    MatrixId id;
    int cols;  // -1: not held
  };
  const Held cases[] = {
      {&det, MatrixId::A, 3},        {&det, MatrixId::A0, -1},     {&det, MatrixId::ZT, -1},
      {&det, MatrixId::D1, -1},      {&det, MatrixId::Q, -1},      {&det, MatrixId::TH0, -1},
      {&det, MatrixId::H, 3},        {&det, MatrixId::R, 1},       {&det, MatrixId::ZETAS, 4},
      {&det, MatrixId::X0DEV, 1},    {&det, MatrixId::N, 2},       {&det, MatrixId::g, 1},
      {&mod, MatrixId::A, -1},       {&mod, MatrixId::A1, 3},      {&mod, MatrixId::DHAT3, 3},
      {&mod, MatrixId::ZT, 4},       {&mod, MatrixId::WT, 5},      {&mod, MatrixId::LAMBDAT, 4},
      {&mod, MatrixId::XDES, 1},     {&mod, MatrixId::XDEST, 5},   {&mod, MatrixId::UDEST, 4},
      {&mod, MatrixId::ITHN, 3},     {&mod, MatrixId::XSIS, 4},    {&mod, MatrixId::W, -1},
      {&single, MatrixId::UDEST, 0}, {&single, MatrixId::XSIS, 0}, {&single, MatrixId::XDEST, 1}};
  for (const Held& h : cases) {
    SCOPED_TRACE(std::string(matrixSpec(h.id).name) + (h.model == &det ? " det" : " tv"));
    EXPECT_EQ(h.model->holds(h.id) ? h.model->matrix(h.id)->cols() : -1, h.cols);
  }
  EXPECT_EQ(det.periods.acronyms.size(), 5u);
  // Only the first maxLead lead matrices are stored in the file; N only under 407.
  EXPECT_TRUE(storedInFile(mod, MatrixId::DHAT2));
  EXPECT_FALSE(storedInFile(mod, MatrixId::DHAT3));
  EXPECT_FALSE(storedInFile(mod, MatrixId::N));
}

TEST(Model, ClearEmptiesEverythingAndBlankLabelsKeepsLengths) {
  Model model = makeModel(ModelShape{}, opt::kParameterUncertainty);
  testing::fillDistinct(model);
  blankLabels(model);
  EXPECT_EQ(model.states.acronyms, blankAcronyms(2));
  EXPECT_EQ(model.states.names, blankNames(2));
  EXPECT_EQ(model.periods.acronyms.size(), 4u);
  EXPECT_EQ(model.matrix(MatrixId::A)->cell(0, 1), "A0.1");  // data untouched
  clearModel(model);
  EXPECT_FALSE(model.allocated);
  EXPECT_EQ(model.dims, Dimensions{});
  EXPECT_EQ(model.flags, SpecFlags{});
  EXPECT_TRUE(model.description.empty());
  for (int i = 0; i < kMatrixCount; ++i) EXPECT_FALSE(model.holds(static_cast<MatrixId>(i)));
}

TEST(Model, SizeCheckNamesEveryOffendingSize) {
  const Model ok = makeModel(ModelShape{});
  EXPECT_EQ(checkSizes(ok), "");
  Model bad = ok, backwards = ok, huge = ok;
  bad.dims.n.set(-1);
  bad.dims.ny.set(kMaxVariables + 1);
  backwards.dims.initialPeriod.set(5);
  backwards.dims.recomputePeriods();
  // Sizes each within range whose matrices together are too many cells.
  huge.dims.n.set(kMaxVariables);
  huge.dims.terminalPeriod.set(kMaxPeriods);
  huge.dims.recomputePeriods();
  huge.flags.xdesForm = opt::kXdesTimeVarying;
  for (const auto& [model, part] :
       {std::pair{&bad, "n = -1"}, {&bad, "ny = 1001"}, {&backwards, "nt"}, {&huge, "cells"}})
    EXPECT_NE(checkSizes(*model).find(part), std::string::npos) << checkSizes(*model);
}

TEST(Model, MatrixTableNamesEveryMatrixOnce) {
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    EXPECT_EQ(matrixByName(matrixSpec(id).name), id);
  }
  EXPECT_EQ(*matrixByName("g"), MatrixId::g);
  EXPECT_FALSE(matrixByName("NOPE").has_value());
  EXPECT_STREQ(matrixSpec(MatrixId::SITT0).title, "SITTO Matrix");
}

}  // namespace
}  // namespace ovaro
