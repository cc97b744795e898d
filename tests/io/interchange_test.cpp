#include "io/interchange.h"

#include <gtest/gtest.h>

#include <string>

#include "io/matrix_import.h"
#include "io/veldpc.h"
#include "support/model_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::makeModel;
using testing::ModelShape;
using F = SpecFlags;

struct FormCase {
  const char* name;
  std::vector<std::pair<int F::*, int>> flags;
  int np, ny, maxLead, stochTerms;
};

class RoundTrip : public ::testing::TestWithParam<std::tuple<InputFormat, FormCase>> {};

// The reader of each format against its writer, over the forms of the model.
TEST_P(RoundTrip, ImportOfTheExportIsTheSameModel) {
  const auto& [format, c] = GetParam();
  ModelShape shape{.np = c.np, .ny = c.ny, .nmc = 7, .maxLead = c.maxLead};
  for (auto [f, v] : c.flags) shape.flags.*f = v;
  Model model = makeModel(shape, c.stochTerms);
  testing::fillDistinct(model);
  model.randomSwitches = {1, 0, 1, 0, 0, 1};
  RecordingPrompter prompter;
  Model back;
  ASSERT_EQ(readInputBytes(format, serializeInput(format, model), back, nullptr, prompter), 1)
      << (prompter.messages().empty() ? "" : prompter.messages().back().text);
  EXPECT_EQ(back.dims, model.dims);
  EXPECT_EQ(back.flags, model.flags);
  EXPECT_EQ(back.randomSwitches, model.randomSwitches);
  EXPECT_EQ(back.acronym + back.name, model.acronym + model.name);
  for (int k = 0; k < kMatrixCount; ++k) {
    const auto id = static_cast<MatrixId>(k);
    ASSERT_EQ(back.holds(id), model.holds(id)) << matrixSpec(id).name;
    if (!model.holds(id)) continue;
    EXPECT_EQ(*back.matrix(id), *model.matrix(id)) << matrixSpec(id).name;
  }
}

INSTANTIATE_TEST_SUITE_P(
    EveryForm, RoundTrip,
    ::testing::Combine(
        ::testing::Values(InputFormat::Qlp, InputFormat::Veld),
        ::testing::Values(
            FormCase{"RegularConstant", {}, 0, 0, 0, opt::kDeterministic},
            FormCase{"PindyckLead3AllTimeVarying",
                     {{&F::systemForm, opt::kPindyck},
                      {&F::forwardVars, opt::kForwardYes},
                      {&F::zForm, opt::kZTimeVarying},
                      {&F::wForm, opt::kWTerminalDifferent},
                      {&F::lambdaForm, opt::kLambdaTimeVarying},
                      {&F::xdesForm, opt::kXdesTimeVarying},
                      {&F::udesForm, opt::kUdesTimeVarying}},
                     0,
                     0,
                     3,
                     opt::kAdditiveNoise},
            FormCase{"RegularLead2WTimeVaryingXdesBothPolicy",
                     {{&F::forwardVars, opt::kForwardYes},
                      {&F::wForm, opt::kWTimeVarying},
                      {&F::xdesForm, opt::kXdesBoth},
                      {&F::policyToParam, opt::kPolicyYes}},
                     2,
                     0,
                     2,
                     opt::kParameterUncertainty},
            FormCase{"QuadraticFormMeasurementError",
                     {{&F::criterionForm, opt::kQuadraticForm},
                      {&F::systemForm, opt::kPindyck},
                      {&F::randomSource, opt::kReadIn}},
                     1,
                     2,
                     0,
                     opt::kMeasurementError},
            FormCase{"NoOptionChosen", {{&F::criterionForm, 0}, {&F::systemForm, 0}}, 0, 0, 0, 0})),
    [](const auto& info) {
      return std::string(formatName(std::get<0>(info.param))) + std::get<1>(info.param).name;
    });

TEST(Interchange, ACellThatIsNotOneTokenTravelsAsItsNumber) {
  EXPECT_EQ(cellToken("1.0E-06"), "1.0E-06");
  EXPECT_EQ(cellToken(" 2.5 x"), "2.5");
  EXPECT_EQ(cellToken(""), "0");
}

TEST(Interchange, EveryTruncationIsRefusedUntilTheEndMarkIsWhole) {
  const std::string whole = serializeInput(InputFormat::Veld, makeModel({}, opt::kAdditiveNoise));
  const std::size_t endMark = whole.rfind("END");
  for (std::size_t len = 0; len <= whole.size(); ++len) {
    RecordingPrompter prompter;
    Model back;
    EXPECT_EQ(readInputBytes(InputFormat::Veld, whole.substr(0, len), back, nullptr, prompter),
              len >= endMark + 3 ? 1 : 0)
        << len;
  }
}

// Refusals name what is wrong (with the line) and keep the model.
TEST(Interchange, RefusalsNameTheProblemAndKeepTheModel) {
  Model model = makeModel(ModelShape{});
  const Model before = model;
  std::string file = serializeInput(InputFormat::Veld, model);
  file.replace(file.find("WDCBA 2 4"), 9, "WDCBA 2 5");
  RecordingPrompter prompter;
  EXPECT_EQ(readInputBytes(InputFormat::Veld, file, model, nullptr, prompter), 0);
  EXPECT_EQ(prompter.messages().back().text,
            "VELD file, line 7: matrix WDCBA is given as 2 x 5 but this model's is 2 x 4.");
  EXPECT_EQ(readInputBytes(InputFormat::Qlp, "1 1 1 5 1 1\n", model, nullptr, prompter), 0);
  EXPECT_EQ(prompter.messages().back().text, "This version cannot handle time varying C.");
  prompter.scriptAnswer(Answer::No);
  EXPECT_EQ(readInputBytes(InputFormat::Qlp, "2001 1 1 5 0 1\n", model, nullptr, prompter), 0);
  EXPECT_EQ(testing::shown(prompter).back(),
            "Warning: Number of state variables > 2000.  Continue ?");
  EXPECT_EQ(model.dims, before.dims);
}

// A model of one state, one control and one exogenous variable over three periods, in the forms
// the PC edition takes, without observation variables.
Model smallVeldpcModel() {
  ModelShape s{.n = 1, .m = 1, .l = 1, .terminalPeriod = 3};
  s.flags.zForm = opt::kZTimeVarying, s.flags.wForm = opt::kWTerminalDifferent;
  s.flags.xdesForm = opt::kXdesTimeVarying, s.flags.udesForm = opt::kUdesTimeVarying;
  Model model = makeModel(s);
  model.acronym = "HAND";
  for (auto [id, j, text] : {std::tuple{MatrixId::A, 0, "0.9"},
                             {MatrixId::B, 0, "0.5"},
                             {MatrixId::ZT, 0, "1"},
                             {MatrixId::W, 0, "1"},
                             {MatrixId::WN, 0, "2.5"},
                             {MatrixId::LAMBDA, 0, "0.1"},
                             {MatrixId::XDEST, 1, "1.0E-06"},
                             {MatrixId::X0, 0, "-3"}})
    model.matrix(id)->setCell(0, j, text);
  return model;
}

TEST(Veldpc, ASmallModelIsWrittenByteForByte) {
  testing::TempDir dir;
  Model model = smallVeldpcModel();
  RecordingPrompter prompter;
  ASSERT_EQ(writeVeldpcFile(dir.file("hand.pc"), model, prompter), 1);
  EXPECT_EQ(testing::slurp(dir.file("hand.pc")),
            testing::slurp(testing::dataPath("veldpc/hand.pc")));
  ASSERT_EQ(prompter.messages().size(), 3u);
  EXPECT_EQ(prompter.messages()[1].text,
            "Number of observation variables is zero.  Will set to number of states.");
  EXPECT_EQ(prompter.messages()[2].caption, "OVARO");
  EXPECT_EQ(model.dims.ny.value, 1);  // kept in the model
  EXPECT_EQ(model.matrix(MatrixId::H)->rows(), 1);
}

// Sizes past the edition's limits warn in order and the file is still written; each form it
// cannot take is refused with its message and no file.
TEST(Veldpc, SizeWarningsComeInOrderAndFormsItCannotTakeAreRefused) {
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
  std::string firstWords;
  for (const Message& m : prompter.messages()) firstWords += m.text.substr(0, 12) + "|";
  EXPECT_EQ(firstWords,
            "Please check|State vector|Control vect|Exogenous va|Time periods|Uncertain pa|"
            "Observation |Number of Mo|");
  testing::TempDir dir;
  for (auto [flag, start] : {std::pair{&F::criterionForm, "Criterion"},
                             {&F::zForm, "Exogenous Variable"},
                             {&F::wForm, "State Penalty Matrix"},
                             {&F::lambdaForm, "Control Penalty"},
                             {&F::xdesForm, "State Desired Path"},
                             {&F::udesForm, "Control Desired"}}) {
    Model refused = smallVeldpcModel();
    refused.flags.*flag += 1;
    RecordingPrompter p;
    EXPECT_EQ(writeVeldpcFile(dir.file("x.pc"), refused, p), 0);
    ASSERT_EQ(p.messages().size(), 1u);
    EXPECT_TRUE(p.messages()[0].text.starts_with(start)) << p.messages()[0].text;
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

// Columns come in blocks of the chosen width, each block row after row; a token too long for a
// cell refuses the whole file, and a short file keeps the cells it does not reach.
TEST(MatrixImport, ColumnBlocksOfTheChosenWidth) {
  TextMatrix t(2, 3);
  ASSERT_TRUE(importMatrixTokens("11 12\n21 22\n13\n23\n", 2, t).ok);
  EXPECT_EQ(cells(t), "11 12 13 21 22 23 ");
  ASSERT_TRUE(importMatrixTokens("a b c d e f", 1, t).ok);  // column by column
  EXPECT_EQ(cells(t), "a c e b d f ");
  t.setCell(1, 2, "keep");
  const MatrixImport refused = importMatrixTokens("1 2 3 1234567890123456 5", 5, t);
  EXPECT_FALSE(refused.ok);
  EXPECT_EQ(refused.problem,
            "Element 4 of the file (row 2, column 1), \"1234567890123456\", is longer than the 15 "
            "characters a cell holds. Nothing was imported.");
  EXPECT_EQ(cells(t), "a c e b d keep ");
  const MatrixImport shorter = importMatrixTokens("1 2 3 4", 5, t);
  EXPECT_EQ(shorter.filled, 4);
  EXPECT_EQ(cells(t), "1 2 3 4 d keep ");
}

}  // namespace
}  // namespace ovaro
