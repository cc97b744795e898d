// The model in memory: its text cells, their conversion, its allocation and size checks, the
// example table, and reshaping a model that holds data.
#include "model/model.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "model/conversion.h"
#include "model/example_table.h"
#include "model/model_file.h"
#include "model/options.h"
#include "model/transform/reconcile.h"
#include "support/model_fixtures.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::makeModel;
using testing::ModelShape;

// Negative counts are taken as 0; a cell keeps up to 15 characters, saying when it shortened one.
TEST(TextMatrix, NegativeCountsAndCellsOfFifteenCharacters) {
  EXPECT_EQ(TextMatrix(-2, 4).rows(), 0);
  TextMatrix t(1, 2);
  EXPECT_TRUE(t.setCell(0, 0, "123456789012345"));
  EXPECT_FALSE(t.setCell(0, 1, "1234567890123456"));
  EXPECT_EQ(t.cell(0, 1), "123456789012345");
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
      {&det, MatrixId::A, 3},       {&det, MatrixId::A0, -1},      {&det, MatrixId::ZT, -1},
      {&det, MatrixId::Q, -1},      {&det, MatrixId::H, 3},        {&det, MatrixId::R, 1},
      {&det, MatrixId::ZETAS, 4},   {&det, MatrixId::N, 2},        {&det, MatrixId::g, 1},
      {&mod, MatrixId::A, -1},      {&mod, MatrixId::A1, 3},       {&mod, MatrixId::DHAT3, 3},
      {&mod, MatrixId::ZT, 4},      {&mod, MatrixId::WT, 5},       {&mod, MatrixId::XDES, 1},
      {&mod, MatrixId::XDEST, 5},   {&mod, MatrixId::UDEST, 4},    {&mod, MatrixId::XSIS, 4},
      {&mod, MatrixId::W, -1},      {&single, MatrixId::UDEST, 0}, {&single, MatrixId::XSIS, 0},
      {&single, MatrixId::XDEST, 1}};
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

TEST(ExampleTableText, RowsAreReadWithTheirCascadeEntries) {
  const ExampleTable t = ExampleTable::parse(
      "# comment\r\n\r\nid\tfile\tdescription\tauthor\tcountry\tfunctional form\tstochastic "
      "terms\tsubject\n3604\tgap1.ovi\tgap1 - A gap\tTeam\tHome\tRegular\tDeterministic\tPolicy\n"
      "3600\tb.ovi\tb - B\ta\tc\tf\ts\tsub\r\n",
      "t.tsv");
  ASSERT_EQ(t.rows().size(), 2u) << t.problem();
  EXPECT_EQ(t.problem(), "");
  EXPECT_EQ(t.row(3600)->subject, "sub");  // the carriage return is not part of the field
  EXPECT_EQ(t.row(3604)->*exampleCascades()[1].field, "Home");
  EXPECT_EQ(t.row(3608), nullptr);
}

// A faulty table is refused whole, its problem naming the line and the field.
TEST(ExampleTableText, AFaultyTableHasNoRowsAndNamesItsProblem) {
  const std::vector<std::string> entries = testing::dataLines("model_example_table_faults.txt");
  ASSERT_EQ(entries.size(), 18u);
  for (std::size_t i = 0; i < entries.size(); i += 2) {
    const ExampleTable t = ExampleTable::parse(entries[i], "t.tsv");
    EXPECT_TRUE(t.rows().empty()) << entries[i];
    EXPECT_EQ(t.problem(), entries[i + 1]);
  }
  EXPECT_EQ(ExampleTable::read("/nonexistent/examples.tsv").problem(),
            "The example table /nonexistent/examples.tsv cannot be read.");
}

// Reshaping a model that holds data: every cell that still fits keeps its text, new cells are
// "0", and the dialogs' old -> new rules run in their order with their texts.
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
  prompter.setAnswerYes(true);
  auto resize = [&](int by, std::vector<int> typed) {
    const Dimensions old = model.dims;
    (model.dims.*c.count).set((old.*c.count).value + by);
    reconcileSize(model, old, prompter, answers(std::move(typed)));
  };
  const int count = (model.dims.*c.count).value;
  resize(1, {});
  // (a state added under measurement error brings its observation, reported after it)
  EXPECT_EQ(prompter.messages().at(0).text, c.added);
  const MatrixId id = *matrixByName(c.matrix);
  EXPECT_EQ(model.matrix(id)->rows(), count + 1);
  EXPECT_EQ(model.matrix(id)->cell(count, 0), "0");
  resize(-1, {count + 1});
  EXPECT_EQ(bytes(model), bytes(original));
  resize(-1, {1});
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
  RecordingPrompter growing, prompter;
  prompter.setAnswerYes(true);
  for (auto [n, p, typed] : {std::tuple{4, &growing, std::vector<int>{}}, {2, &prompter, {4, 4}}}) {
    const Dimensions old = model.dims;
    model.dims.n.set(n);
    reconcileSize(model, old, *p, answers(typed));
  }
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
  RecordingPrompter prompter, no;
  prompter.setAnswerYes(true);
  auto change = [&](int SpecFlags::*flag, int to, RecordingPrompter& p) {
    const SpecFlags old = model.flags;
    model.flags.*flag = to;
    reconcileSpecification(model, old, p, nullptr);
  };
  for (auto [flag, constant, timeVarying] :
       {std::tuple{&SpecFlags::wForm, opt::kWConstant, opt::kWTimeVarying},
        std::tuple{&SpecFlags::lambdaForm, opt::kLambdaConstant, opt::kLambdaTimeVarying},
        std::tuple{&SpecFlags::zForm, opt::kZConstant, opt::kZTimeVarying}}) {
    change(flag, timeVarying, prompter);
    change(flag, constant, prompter);
  }
  EXPECT_EQ(bytes(model), bytes(original));
  change(&SpecFlags::wForm, opt::kWTimeVarying, prompter);
  model.matrix(MatrixId::WT)->setCell(0, 0, "7.5");
  const SpecFlags old = model.flags;
  model.flags.wForm = opt::kWConstant, model.flags.systemForm = opt::kPindyck;
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
