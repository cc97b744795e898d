// Reshaping a model that holds data: every cell that still fits keeps its text, new cells are
// "0", and the dialogs' old -> new rules run in their order with their texts.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "model/model_file.h"
#include "model/options.h"
#include "model/transform/reconcile.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

std::string bytes(const Model& model) {
  std::string out;
  RecordingPrompter prompter;
  EXPECT_TRUE(serializeModel(model, "m.ovi", out, prompter));
  return out;
}

Model filled(int stochTerms, int wForm = opt::kWConstant) {
  testing::ModelShape shape{.m = 2, .l = 2, .np = 2, .ny = 2};
  shape.flags.wForm = wForm;
  Model model = testing::makeModel(shape, stochTerms);
  testing::fillDistinct(model);
  return model;
}

AskDeleteElem answers(std::vector<int> typed) {
  auto next = std::make_shared<std::size_t>(0);
  return [typed, next]() -> std::optional<int> { return typed.at((*next)++); };
}

struct ClassCase {
  Count Dimensions::*count;
  const char* matrix;  // a matrix whose first side is of the class
  const char* added;   // what the addition reports
};

class AddThenDelete : public ::testing::TestWithParam<ClassCase> {};

// Adding one element and deleting it again gives back the model file byte for byte; deleting the
// first element moves every other row up with its text.
TEST_P(AddThenDelete, RestoresTheModelAndDeletionRenumbers) {
  const ClassCase c = GetParam();
  const Model original = filled(opt::kMeasurementError);
  Model model = original;
  RecordingPrompter prompter;
  Dimensions old = model.dims;
  (model.dims.*c.count).set((old.*c.count).value + 1);
  reconcileSize(model, old, prompter, answers({}));
  // (a state added under measurement error brings its observation, reported after it)
  EXPECT_EQ(prompter.messages().at(0).text, c.added);
  const MatrixId id = *matrixByName(c.matrix);
  EXPECT_EQ(model.matrix(id)->rows(), (old.*c.count).value + 1);
  EXPECT_EQ(model.matrix(id)->cell((old.*c.count).value, 0), "0");
  old = model.dims;
  (model.dims.*c.count).set((old.*c.count).value - 1);
  prompter.setAnswerYes(true);
  reconcileSize(model, old, prompter, answers({(old.*c.count).value}));
  EXPECT_EQ(bytes(model), bytes(original));

  old = model.dims;
  (model.dims.*c.count).set((old.*c.count).value - 1);
  reconcileSize(model, old, prompter, answers({1}));
  EXPECT_EQ(model.matrix(id)->cell(0, 0), original.matrix(id)->cell(1, 0));
}

INSTANTIATE_TEST_SUITE_P(
    Classes, AddThenDelete,
    ::testing::Values(
        ClassCase{&Dimensions::n, "X0", "Completed Addition of State Variables"},
        ClassCase{&Dimensions::m, "LAMBDA", "Completed Addition of Control Variables"},
        ClassCase{&Dimensions::l, "Z", "Completed Addition of Exogenous Variables"},
        ClassCase{&Dimensions::np, "TH0", "Added uncertain parameters."},
        ClassCase{&Dimensions::ny, "H", "Completed Addition of Observation Variables"}),
    [](const auto& info) { return std::string(info.param.matrix); });

// Lowering n from 4 to 2 asks twice; the second deletion is told the count after the first, so
// the same index 4 is now out of range, and the count says what the matrices hold.
TEST(ReconcileSize, EachDeletionSeesTheCountBeforeIt) {
  Model model = filled(opt::kDeterministic);
  const Dimensions old = model.dims;
  model.dims.n.set(4);
  RecordingPrompter growing;
  reconcileSize(model, old, growing, answers({}));
  const Dimensions four = model.dims;
  model.dims.n.set(2);
  RecordingPrompter prompter;
  prompter.setAnswerYes(true);
  reconcileSize(model, four, prompter, answers({4, 4}));
  const std::vector<std::string> texts = testing::shown(prompter);
  ASSERT_EQ(texts.size(), 4u);
  EXPECT_EQ(texts[0].rfind("Deletion procedure.: One state variable at a time", 0), 0u);
  EXPECT_EQ(texts[2], "Transformation: Completed Deletion of a State Variable");
  EXPECT_EQ(texts[3], "Warning!: Index exceeds the number of  \t\t\t\r state variables");
  EXPECT_EQ(model.dims.n.value, 3);
  EXPECT_EQ(model.matrix(MatrixId::A)->rows(), 3);
}

// The initial period cannot change; the terminal one drops or adds "0" columns of every
// per-period matrix in use, but XSIS keeps its width under additive noise alone.
TEST(ReconcileSize, PeriodsAndTheirQuirks) {
  Model model = filled(opt::kAdditiveNoise, opt::kWTimeVarying);
  const Model original = model;
  RecordingPrompter prompter;
  model.dims.initialPeriod.set(2);
  model.dims.terminalPeriod.set(6);
  model.dims.recomputePeriods();
  reconcileSize(model, original.dims, prompter, answers({}));
  EXPECT_EQ(model.dims.initialPeriod, original.dims.initialPeriod);
  const TextMatrix& wt = *model.matrix(MatrixId::WT);
  ASSERT_EQ(wt.cols(), 6);
  EXPECT_EQ(wt.cell(1, 3), original.matrix(MatrixId::WT)->cell(1, 3));
  EXPECT_EQ(wt.cell(1, 5), "0");
  EXPECT_EQ(model.matrix(MatrixId::XSIS)->cols(), original.matrix(MatrixId::XSIS)->cols());
  EXPECT_EQ(prompter.messages().back().text,
            "Changes in the initial time period are not yet enabled.            \r Use changes in "
            "the acronyms for the time periods instead.");
}

// Constant -> time varying -> constant gives the constant back (period 0 holds it); No to the
// data-loss question keeps the time-varying form and its data.
TEST(ReconcileSpecification, FormRoundTripsAndDeclinedLoss) {
  Model model = filled(opt::kDeterministic);
  const Model original = model;
  RecordingPrompter prompter;
  prompter.setAnswerYes(true);
  for (auto [flag, constant, timeVarying] :
       {std::tuple{&SpecFlags::wForm, opt::kWConstant, opt::kWTimeVarying},
        std::tuple{&SpecFlags::lambdaForm, opt::kLambdaConstant, opt::kLambdaTimeVarying},
        std::tuple{&SpecFlags::zForm, opt::kZConstant, opt::kZTimeVarying}}) {
    SpecFlags old = model.flags;
    model.flags.*flag = timeVarying;
    reconcileSpecification(model, old, prompter, nullptr);
    old = model.flags;
    model.flags.*flag = constant;
    reconcileSpecification(model, old, prompter, nullptr);
  }
  EXPECT_EQ(bytes(model), bytes(original));

  SpecFlags old = model.flags;
  model.flags.wForm = opt::kWTimeVarying;
  reconcileSpecification(model, old, prompter, nullptr);
  model.matrix(MatrixId::WT)->setCell(0, 0, "7.5");
  old = model.flags;
  model.flags.wForm = opt::kWConstant;
  model.flags.systemForm = opt::kPindyck;
  RecordingPrompter no;
  reconcileSpecification(model, old, no, nullptr);
  EXPECT_EQ(model.flags.wForm, opt::kWTimeVarying);
  EXPECT_EQ(model.flags.systemForm, opt::kRegular);
  EXPECT_EQ(model.matrix(MatrixId::WT)->cell(0, 0), "7.5");
  EXPECT_EQ(no.messages().at(0).text,
            "Not yet implemented! - System equations from Regular to Pindyck Form");
}

// Deterministic -> uncertain parameters -> measurement error -> deterministic, the counts coming
// from the Size dialog in the middle: every step leaves a model that writes and reads back.
TEST(ReconcileSpecification, StochasticTermsThereAndBack) {
  Model model = testing::makeModel({}, opt::kDeterministic);
  RecordingPrompter prompter;
  auto step = [&](int to, auto setCounts) {
    const SpecFlags old = model.flags;
    model.flags.stochTerms = to;
    reconcileSpecification(model, old, prompter, setCounts);
    Model back;
    RecordingPrompter quiet;
    ASSERT_EQ(readModelBytes(bytes(model), "m.ovi", back, quiet), 1);
    EXPECT_EQ(bytes(back), bytes(model));
  };
  step(opt::kParameterUncertainty, [&] { model.dims.np.set(2); });
  EXPECT_EQ(model.matrix(MatrixId::ITHN)->rows(), 2);
  EXPECT_EQ(model.parameters.acronyms.size(), 2u);
  step(opt::kMeasurementError, [&] { model.dims.ny.set(2); });
  EXPECT_EQ(*model.matrix(MatrixId::H), TextMatrix::identity(2));
  step(opt::kDeterministic, [] {});
  EXPECT_EQ(model.dims.np.value + model.dims.ny.value + model.dims.nmc.value, 0);
  EXPECT_FALSE(model.holds(MatrixId::Q));
  EXPECT_EQ(prompter.messages().back().text,
            "Changed stochastic terms specification from stochastic\t\t\r with measurement error "
            "to deterministic");
  step(opt::kMeasurementError, [] {});
  EXPECT_EQ(model.flags.stochTerms, opt::kDeterministic);
  EXPECT_EQ(prompter.messages().back().caption, "Transformation not yet implemented!");
}

}  // namespace
}  // namespace ovaro
