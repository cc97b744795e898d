#include "io/interchange.h"

#include <gtest/gtest.h>

#include <string>

#include "io/matrix_import.h"
#include "io/veldpc.h"
#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using testing::makeModel;
using testing::ModelShape;

struct FormCase {
  const char* name;
  ModelShape shape;
  int stochTerms;
};

ModelShape shape(std::initializer_list<std::pair<int SpecFlags::*, int>> flags, int np = 0,
                 int ny = 0, int maxLead = 0) {
  ModelShape s;
  s.np = np;
  s.ny = ny;
  s.nmc = 7;
  s.maxLead = maxLead;
  for (auto [f, v] : flags) s.flags.*f = v;
  return s;
}

class RoundTrip : public ::testing::TestWithParam<std::tuple<InputFormat, FormCase>> {};

TEST_P(RoundTrip, ImportOfTheExportIsTheSameModel) {
  const auto& [format, c] = GetParam();
  Model model = makeModel(c.shape, c.stochTerms);
  testing::fillDistinct(model);
  model.randomSwitches = {1, 0, 1, 0, 0, 1};
  RecordingPrompter prompter;
  Model back;
  ASSERT_EQ(readInputBytes(format, serializeInput(format, model), back, nullptr, prompter), 1)
      << (prompter.messages().empty() ? "" : prompter.messages().back().text);
  EXPECT_EQ(back.dims, model.dims);
  EXPECT_EQ(back.flags, model.flags);
  EXPECT_EQ(back.randomSwitches, model.randomSwitches);
  EXPECT_EQ(back.acronym, model.acronym);
  EXPECT_EQ(back.name, model.name);
  for (int k = 0; k < kMatrixCount; ++k) {
    const auto id = static_cast<MatrixId>(k);
    ASSERT_EQ(back.holds(id), model.holds(id)) << matrixSpec(id).name;
    if (model.holds(id)) {
      EXPECT_EQ(*back.matrix(id), *model.matrix(id)) << matrixSpec(id).name;
    }
  }
}

using F = SpecFlags;
INSTANTIATE_TEST_SUITE_P(
    EveryForm, RoundTrip,
    ::testing::Combine(
        ::testing::Values(InputFormat::Qlp, InputFormat::Veld),
        ::testing::Values(FormCase{"RegularConstant", shape({}), opt::kDeterministic},
                          FormCase{"PindyckLead3AllTimeVarying",
                                   shape({{&F::systemForm, opt::kPindyck},
                                          {&F::forwardVars, opt::kForwardYes},
                                          {&F::zForm, opt::kZTimeVarying},
                                          {&F::wForm, opt::kWTerminalDifferent},
                                          {&F::lambdaForm, opt::kLambdaTimeVarying},
                                          {&F::xdesForm, opt::kXdesTimeVarying},
                                          {&F::udesForm, opt::kUdesTimeVarying}},
                                         0, 0, 3),
                                   opt::kAdditiveNoise},
                          FormCase{"RegularLead2WTimeVaryingXdesBothPolicy",
                                   shape({{&F::forwardVars, opt::kForwardYes},
                                          {&F::wForm, opt::kWTimeVarying},
                                          {&F::xdesForm, opt::kXdesBoth},
                                          {&F::policyToParam, opt::kPolicyYes}},
                                         2, 0, 2),
                                   opt::kParameterUncertainty},
                          FormCase{"QuadraticFormMeasurementError",
                                   shape({{&F::criterionForm, opt::kQuadraticForm},
                                          {&F::systemForm, opt::kPindyck},
                                          {&F::randomSource, opt::kReadIn}},
                                         1, 2),
                                   opt::kMeasurementError},
                          FormCase{"NoOptionChosen",
                                   shape({{&F::criterionForm, 0}, {&F::systemForm, 0}}), 0})),
    [](const auto& info) {
      return std::string(formatName(std::get<0>(info.param))) + std::get<1>(info.param).name;
    });

TEST(Interchange, ACellThatIsNotOneTokenTravelsAsItsNumber) {
  EXPECT_EQ(cellToken("1.0E-06"), "1.0E-06");
  EXPECT_EQ(cellToken(" 2.5 x"), "2.5");
  EXPECT_EQ(cellToken(""), "0");
}

TEST(Interchange, EveryTruncationIsRefusedUntilTheEndMarkIsWhole) {
  Model model = makeModel(ModelShape{}, opt::kAdditiveNoise);
  const std::string whole = serializeInput(InputFormat::Veld, model);
  const std::size_t endMark = whole.rfind("END");
  for (std::size_t len = 0; len <= whole.size(); ++len) {
    RecordingPrompter prompter;
    Model back;
    EXPECT_EQ(readInputBytes(InputFormat::Veld, whole.substr(0, len), back, nullptr, prompter),
              len >= endMark + 3 ? 1 : 0)
        << len;
  }
}

TEST(Interchange, QlpRefusesTimeVaryingCAndAsksAboutHugeStateVectors) {
  RecordingPrompter prompter;
  Model model;
  EXPECT_EQ(readInputBytes(InputFormat::Qlp, "1 1 1 5 1 1\n", model, nullptr, prompter), 0);
  EXPECT_EQ(prompter.messages().back().text, "This version cannot handle time varying C.");
  prompter.scriptAnswer(Answer::No);
  EXPECT_EQ(readInputBytes(InputFormat::Qlp, "2001 1 1 5 0 1\n", model, nullptr, prompter), 0);
  EXPECT_EQ(prompter.messages().back().text, "Number of state variables > 2000.  Continue ?");
  EXPECT_EQ(prompter.messages().back().caption, "Warning");
}

TEST(Interchange, AMalformedFieldIsNamedWithItsLineAndTheModelIsKept) {
  Model model = makeModel(ModelShape{});
  const Model before = model;
  std::string file = serializeInput(InputFormat::Veld, model);
  file.replace(file.find("WDCBA 2 4"), 9, "WDCBA 2 5");
  RecordingPrompter prompter;
  EXPECT_EQ(readInputBytes(InputFormat::Veld, file, model, nullptr, prompter), 0);
  EXPECT_EQ(prompter.messages().back().text,
            "VELD file, line 7: matrix WDCBA is given as 2 x 5 but this model's is 2 x 4.");
  EXPECT_EQ(model.dims, before.dims);
}

// A model of one state, one control and one exogenous variable over three periods, in the forms
// the PC edition takes, without observation variables.
Model smallVeldpcModel() {
  ModelShape s;
  s.n = s.m = s.l = 1;
  s.terminalPeriod = 3;
  s.flags.zForm = opt::kZTimeVarying;
  s.flags.wForm = opt::kWTerminalDifferent;
  s.flags.xdesForm = opt::kXdesTimeVarying;
  s.flags.udesForm = opt::kUdesTimeVarying;
  Model model = makeModel(s);
  model.acronym = "HAND";
  auto set = [&](MatrixId id, int j, const char* text) { model.matrix(id)->setCell(0, j, text); };
  set(MatrixId::A, 0, "0.9");
  set(MatrixId::B, 0, "0.5");
  set(MatrixId::ZT, 0, "1");
  set(MatrixId::W, 0, "1");
  set(MatrixId::WN, 0, "2.5");
  set(MatrixId::LAMBDA, 0, "0.1");
  set(MatrixId::XDEST, 1, "1.0E-06");
  set(MatrixId::X0, 0, "-3");
  return model;
}

TEST(Veldpc, ASmallModelIsWrittenByteForByte) {
  testing::TempDir dir;
  Model model = smallVeldpcModel();
  RecordingPrompter prompter;
  ASSERT_EQ(writeVeldpcFile(dir.file("hand.pc"), model, prompter), 1);
  EXPECT_EQ(testing::slurp(dir.file("hand.pc")),
            testing::slurp(std::string(OVARO_SOURCE_DIR) + "/tests/data/veldpc/hand.pc"));
  ASSERT_EQ(prompter.messages().size(), 3u);
  EXPECT_EQ(prompter.messages()[1].text,
            "Number of observation variables is zero.  Will set to number of states.");
  EXPECT_EQ(prompter.messages()[2].caption, "OVARO");
  EXPECT_EQ(model.dims.ny.value, 1);  // kept in the model
  EXPECT_EQ(model.matrix(MatrixId::H)->rows(), 1);
}

TEST(Veldpc, SizeWarningsComeInOrderAndTheFileIsStillWritten) {
  Model model = smallVeldpcModel();
  for (auto [count, v] : {std::pair{&Dimensions::n, 4},
                          {&Dimensions::m, 3},
                          {&Dimensions::l, 2},
                          {&Dimensions::np, 11},
                          {&Dimensions::ny, 4},
                          {&Dimensions::nmc, 101}})
    (model.dims.*count).set(v);
  model.dims.terminalPeriod.set(8);
  model.dims.recomputePeriods();
  RecordingPrompter prompter;
  ASSERT_TRUE(veldpcContent(model, prompter).has_value());
  std::vector<std::string> firstWords;
  for (const Message& m : prompter.messages()) firstWords.push_back(m.text.substr(0, 12));
  EXPECT_EQ(firstWords, (std::vector<std::string>{"Please check", "State vector", "Control vect",
                                                  "Exogenous va", "Time periods", "Uncertain pa",
                                                  "Observation ", "Number of Mo"}));
}

TEST(Veldpc, EachFormTheEditionCannotTakeIsRefusedWithItsMessage) {
  const std::pair<int SpecFlags::*, const char*> cases[] = {
      {&SpecFlags::criterionForm, "Criterion"},     {&SpecFlags::zForm, "Exogenous Variable"},
      {&SpecFlags::wForm, "State Penalty Matrix"},  {&SpecFlags::lambdaForm, "Control Penalty"},
      {&SpecFlags::xdesForm, "State Desired Path"}, {&SpecFlags::udesForm, "Control Desired"}};
  testing::TempDir dir;
  for (auto [flag, start] : cases) {
    Model model = smallVeldpcModel();
    model.flags.*flag += 1;
    RecordingPrompter prompter;
    EXPECT_EQ(writeVeldpcFile(dir.file("x.pc"), model, prompter), 0);
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages()[0].text.rfind(start, 0), 0u) << prompter.messages()[0].text;
    EXPECT_FALSE(std::filesystem::exists(dir.file("x.pc")));
  }
}

// The cells of a matrix as one string, row after row.
std::string cells(const TextMatrix& t) {
  std::string s;
  for (int i = 0; i < t.rows(); ++i)
    for (int j = 0; j < t.cols(); ++j) s += std::string(t.cell(i, j)) + " ";
  return s;
}

TEST(MatrixImport, ColumnBlocksOfTheChosenWidth) {
  TextMatrix t(2, 3);
  ASSERT_TRUE(importMatrixTokens("11 12\n21 22\n13\n23\n", 2, t).ok);
  EXPECT_EQ(cells(t), "11 12 13 21 22 23 ");
  ASSERT_TRUE(importMatrixTokens("a b c d e f", 1, t).ok);  // column by column
  EXPECT_EQ(cells(t), "a c e b d f ");
  // 3 x 12 with blocks of 5: columns 1-5, 6-10, 11-12, each block row after row.
  std::string file;
  for (auto [c0, c1] : {std::pair{1, 5}, {6, 10}, {11, 12}})
    for (int r = 1; r <= 3; ++r)
      for (int c = c0; c <= c1; ++c) file += std::to_string(r * 100 + c) + " ";
  TextMatrix wide(3, 12);
  ASSERT_EQ(importMatrixTokens(file, 5, wide).filled, 36);
  for (int r = 0; r < 3; ++r)
    for (int c = 0; c < 12; ++c) EXPECT_EQ(wide.cell(r, c), std::to_string((r + 1) * 100 + c + 1));
}

TEST(MatrixImport, ALongTokenRefusesTheFileAndAShortFileKeepsTheRest) {
  TextMatrix t(2, 2);
  t.setCell(1, 1, "keep");
  const MatrixImport refused = importMatrixTokens("1 2 1234567890123456 4", 5, t);
  EXPECT_FALSE(refused.ok);
  EXPECT_EQ(refused.problem,
            "Element 3 of the file (row 2, column 1), \"1234567890123456\", is longer than the 15 "
            "characters a cell holds. Nothing was imported.");
  EXPECT_EQ(cells(t), "0 0 0 keep ");
  const MatrixImport shorter = importMatrixTokens("1 2 3", 5, t);
  EXPECT_TRUE(shorter.ok);
  EXPECT_EQ(shorter.filled, 3);
  EXPECT_EQ(cells(t), "1 2 3 keep ");
}

}  // namespace
}  // namespace ovaro
