#include "model/model.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

#include "model/conversion.h"
#include "model/example_table.h"
#include "model/model_file.h"
#include "support/model_fixtures.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

using testing::makeModel;
using testing::ModelShape;

TEST(TextMatrix, FreshCellsReadZeroAndCellsKeepUpToFifteenCharactersVerbatim) {
  TextMatrix t(2, 3);
  ASSERT_EQ((std::array{t.rows(), t.cols()}), (std::array{2, 3}));
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(t.cell(i, j), "0");
  const TextMatrix id = TextMatrix::identity(3);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) EXPECT_EQ(id.cell(i, j), i == j ? "1" : "0");
  EXPECT_EQ(TextMatrix(-2, 4).rows(), 0);  // negative counts are taken as 0

  EXPECT_TRUE(t.setCell(0, 0, "1.0E-06"));
  EXPECT_TRUE(t.setCell(0, 1, "123456789012345"));
  EXPECT_FALSE(t.setCell(0, 2, "1234567890123456"));  // one too many: shortened
  EXPECT_EQ(
      std::string(t.cell(0, 0)) + "|" + std::string(t.cell(0, 1)) + "|" + std::string(t.cell(0, 2)),
      "1.0E-06|123456789012345|123456789012345");
  EXPECT_TRUE(t.setCell(0, 1, ""));
  EXPECT_EQ(t.cell(0, 1), "");

  const LabelTable blank = LabelTable::blank(3, true);
  EXPECT_EQ(blank.acronyms, std::vector<std::string>(3, " "));
  EXPECT_EQ(blank.names, std::vector<std::string>(3, std::string(48, ' ')));
  EXPECT_TRUE(LabelTable::blank(4, false).names.empty());
}

TEST(Conversion, DecimalTextToNumbers) {
  const double inf = std::numeric_limits<double>::infinity();
  // The leading number of the text, else 0; 0.1 must be the same bits as the literal, whatever
  // the locale.
  const std::pair<const char*, double> doubles[] = {
      {"1.0E-06", 1.0e-6}, {"  -2.5", -2.5}, {"+3", 3.0},     {"12abc", 12.0},
      {".5", 0.5},         {"abc", 0.0},     {"", 0.0},       {"+-1", 0.0},
      {"1e999", inf},      {"-1e999", -inf}, {"1e-999", 0.0}, {"0.1", 0.1}};
  for (const auto& [text, value] : doubles) EXPECT_EQ(toDouble(text), value) << text;
  const std::pair<const char*, int> ints[] = {{"1724", 1724},
                                              {" -7x", -7},
                                              {"", 0},
                                              {"x1", 0},
                                              {"99999999999", std::numeric_limits<int>::max()},
                                              {"-99999999999", std::numeric_limits<int>::min()}};
  for (const auto& [text, value] : ints) EXPECT_EQ(toInt(text), value) << text;
}

TEST(Conversion, TextMatricesBecomeOneBasedAndPeriodArrays) {
  TextMatrix t(2, 3);
  t.setCell(0, 0, "1");
  t.setCell(0, 2, "2.5");
  t.setCell(1, 1, "-4");
  const Mat a = toMat(t), p = toPeriodMat(t);  // p: columns are periods 0..2
  EXPECT_EQ((std::array{a.rlo(), a.rhi(), a.clo(), a.chi(), p.clo(), p.chi()}),
            (std::array{1, 2, 1, 3, 0, 2}));
  for (int i = 1; i <= 2; ++i)
    for (int j = 1; j <= 3; ++j) {
      EXPECT_EQ(a(i, j), toDouble(t.cell(i - 1, j - 1))) << i << "," << j;
      EXPECT_EQ(p(i, j - 1), a(i, j)) << i << "," << j;
    }
  const Vec v = toVec(t);  // first column
  EXPECT_EQ((std::array{v.lo(), v.hi()}), (std::array{1, 2}));
  EXPECT_EQ((std::array{v(1), v(2)}), (std::array{1.0, 0.0}));
  EXPECT_EQ(toIMat(t)(2, 2), -4);
}

TEST(Model, CountsKeepTextAndNumberTogether) {
  Dimensions d;
  d.initialPeriod.setText("1");
  d.terminalPeriod.setText("1");
  d.recomputePeriods();
  EXPECT_EQ(d.nt.value, 1);
  EXPECT_EQ(d.nt.text, "1");
  EXPECT_EQ(d.ntMinus1.text, "0");
  d.terminalPeriod.set(2030);
  d.initialPeriod.set(2021);
  d.recomputePeriods();
  EXPECT_EQ(d.nt.value, 10);
  EXPECT_EQ(d.ntMinus1.value, 9);
  d.n.setText("abc");  // text that is not a number reads as 0
  EXPECT_EQ(d.n.value, 0);
  EXPECT_EQ(d.n.text, "abc");
  d.setToleranceText("1.0E-06");
  EXPECT_EQ(d.tolerance, 1.0e-6);
}

TEST(Model, AllocationFollowsTheFlags) {
  const ModelShape s{.n = 3, .m = 2, .l = 1, .np = 2, .ny = 1, .terminalPeriod = 5};  // nt = 5
  Model det = makeModel(s, opt::kDeterministic);
  EXPECT_TRUE(det.allocated);
  EXPECT_TRUE(det.holds(MatrixId::A));
  EXPECT_FALSE(det.holds(MatrixId::A0));
  EXPECT_TRUE(det.holds(MatrixId::Z));
  EXPECT_FALSE(det.holds(MatrixId::ZT));
  EXPECT_FALSE(det.holds(MatrixId::D1));
  EXPECT_FALSE(det.holds(MatrixId::Q));
  EXPECT_FALSE(det.holds(MatrixId::TH0));
  // The measurement-error group, X0, G, g and N exist even in a deterministic model.
  for (MatrixId id : {MatrixId::D, MatrixId::H, MatrixId::SIXX0, MatrixId::SITX0, MatrixId::R,
                      MatrixId::GAM, MatrixId::ZETAS, MatrixId::ETAS, MatrixId::TH0DEV,
                      MatrixId::X0DEV, MatrixId::X0, MatrixId::G, MatrixId::g, MatrixId::N})
    EXPECT_TRUE(det.holds(id)) << matrixSpec(id).name;
  EXPECT_EQ(det.matrix(MatrixId::H)->rows(), 1);
  EXPECT_EQ(det.matrix(MatrixId::H)->cols(), 3);
  EXPECT_EQ(det.matrix(MatrixId::ZETAS)->cols(), 4);  // nt - 1
  EXPECT_EQ(det.matrix(MatrixId::N)->rows(), 2);
  EXPECT_EQ(det.matrix(MatrixId::N)->cols(), 2);
  EXPECT_EQ(det.states.acronyms.size(), 3u);
  EXPECT_EQ(det.periods.acronyms.size(), 5u);
  EXPECT_TRUE(det.periods.names.empty());
  EXPECT_TRUE(det.description.empty());

  ModelShape tv = s;
  tv.flags.systemForm = opt::kPindyck;
  tv.flags.forwardVars = opt::kForwardYes;
  tv.maxLead = 2;
  tv.flags.zForm = opt::kZTimeVarying;
  tv.flags.wForm = opt::kWTimeVarying;
  tv.flags.lambdaForm = opt::kLambdaTimeVarying;
  tv.flags.xdesForm = opt::kXdesBoth;
  tv.flags.udesForm = opt::kUdesTimeVarying;
  Model mod = makeModel(tv, opt::kParameterUncertainty);
  EXPECT_FALSE(mod.holds(MatrixId::A));
  for (MatrixId id : {MatrixId::A0, MatrixId::A1, MatrixId::B1, MatrixId::C1, MatrixId::DHAT1,
                      MatrixId::DHAT2, MatrixId::DHAT3})
    EXPECT_TRUE(mod.holds(id)) << matrixSpec(id).name;
  EXPECT_EQ(mod.matrix(MatrixId::ZT)->cols(), 4);
  EXPECT_EQ(mod.matrix(MatrixId::WT)->cols(), 5);
  EXPECT_EQ(mod.matrix(MatrixId::LAMBDAT)->cols(), 4);
  EXPECT_TRUE(mod.holds(MatrixId::XDES));  // 419 holds both desired-state arrays
  EXPECT_EQ(mod.matrix(MatrixId::XDEST)->cols(), 5);
  EXPECT_EQ(mod.matrix(MatrixId::UDEST)->cols(), 4);
  EXPECT_EQ(mod.matrix(MatrixId::ITHN)->cols(), 3);
  EXPECT_EQ(mod.matrix(MatrixId::XSIS)->cols(), 4);
  EXPECT_FALSE(mod.holds(MatrixId::W));
  // Only the first maxLead lead matrices are stored in the file; N only under 407.
  EXPECT_TRUE(storedInFile(mod, MatrixId::DHAT2));
  EXPECT_FALSE(storedInFile(mod, MatrixId::DHAT3));
  EXPECT_FALSE(storedInFile(mod, MatrixId::N));
  EXPECT_FALSE(storedInFile(mod, MatrixId::ZETAS));
}

TEST(Model, OnePeriodModelHasZeroColumnControlArrays) {
  ModelShape s;
  s.initialPeriod = 1;
  s.terminalPeriod = 1;
  s.flags.udesForm = opt::kUdesTimeVarying;
  s.flags.xdesForm = opt::kXdesTimeVarying;
  const Model model = makeModel(s, opt::kAdditiveNoise);
  EXPECT_EQ(model.dims.nt.value, 1);
  EXPECT_EQ(model.matrix(MatrixId::UDEST)->cols(), 0);
  EXPECT_EQ(model.matrix(MatrixId::XSIS)->cols(), 0);
  EXPECT_EQ(model.matrix(MatrixId::XDEST)->cols(), 1);
}

TEST(Model, ClearEmptiesEverythingAndBlankLabelsKeepsLengths) {
  Model model = makeModel(ModelShape{}, opt::kParameterUncertainty);
  testing::fillDistinct(model);
  blankLabels(model);
  EXPECT_EQ(model.states.acronyms, blankAcronyms(2));
  EXPECT_EQ(model.states.names, blankNames(2));
  EXPECT_EQ(model.periods.acronyms.size(), 4u);
  EXPECT_TRUE(model.periods.names.empty());
  EXPECT_EQ(model.matrix(MatrixId::A)->cell(0, 1), "A0.1");  // data untouched

  clearModel(model);
  EXPECT_FALSE(model.allocated);
  EXPECT_EQ(model.dims, Dimensions{});
  EXPECT_EQ(model.flags, SpecFlags{});
  EXPECT_EQ(model.randomSwitches, RandomSwitches{});
  EXPECT_TRUE(model.acronym.empty());
  EXPECT_TRUE(model.name.empty());
  EXPECT_TRUE(model.description.empty());
  EXPECT_EQ(model.fileVersion, 0);
  for (int i = 0; i < kMatrixCount; ++i) EXPECT_FALSE(model.holds(static_cast<MatrixId>(i)));
}

TEST(Model, SizeCheckNamesEveryOffendingSize) {
  ModelShape s;
  Model ok = makeModel(s);
  EXPECT_EQ(checkSizes(ok), "");

  Model bad = ok;
  bad.dims.n.set(-1);
  bad.dims.ny.set(kMaxVariables + 1);
  const std::string problems = checkSizes(bad);
  EXPECT_NE(problems.find("n = -1"), std::string::npos) << problems;
  EXPECT_NE(problems.find("ny = 1001"), std::string::npos) << problems;

  Model backwards = ok;
  backwards.dims.initialPeriod.set(5);
  backwards.dims.terminalPeriod.set(4);
  backwards.dims.recomputePeriods();
  EXPECT_NE(checkSizes(backwards).find("nt"), std::string::npos);

  // Sizes each within range whose matrices together are too many cells.
  Model huge = ok;
  huge.dims.n.set(kMaxVariables);
  huge.dims.initialPeriod.set(1);
  huge.dims.terminalPeriod.set(kMaxPeriods);
  huge.dims.recomputePeriods();
  huge.flags.xdesForm = opt::kXdesTimeVarying;
  EXPECT_NE(checkSizes(huge).find("cells"), std::string::npos);
}

TEST(Model, MatrixTableNamesEveryMatrixOnce) {
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    const auto back = matrixByName(matrixSpec(id).name);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(*back, id);
  }
  EXPECT_EQ(*matrixByName("g"), MatrixId::g);
  EXPECT_EQ(*matrixByName("G"), MatrixId::G);
  EXPECT_FALSE(matrixByName("NOPE").has_value());
  EXPECT_STREQ(matrixSpec(MatrixId::SITT0).title, "SITTO Matrix");
}

TEST(ExampleTable, RowsHaveDistinctIdsInTheExampleRangeAndStemDescriptions) {
  const auto table = exampleTable();
  ASSERT_GE(table.size(), 3u);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const ExampleEntry& e = table[i];
    EXPECT_GE(e.commandId, 3600);
    EXPECT_LE(e.commandId, 3836);
    EXPECT_EQ((e.commandId - 3600) % 4, 0);
    ASSERT_TRUE(e.fileName.ends_with(".ovi"));
    const std::string_view stem = e.fileName.substr(0, e.fileName.size() - 4);
    EXPECT_TRUE(e.description.starts_with(std::string(stem) + " - ")) << e.description;
    for (std::size_t j = 0; j < i; ++j) EXPECT_NE(table[j].commandId, e.commandId);
  }
}

TEST(ExampleTable, EveryExampleFileReadsCleanlyAndIsListedInTheLibraryTable) {
  const std::string dir = std::string(OVARO_SOURCE_DIR) + "/examples/";
  const std::string library = testing::slurp(dir + "README.md");
  for (const ExampleEntry& e : exampleTable()) {
    SCOPED_TRACE(std::string(e.fileName));
    Model model;
    RecordingPrompter prompter;
    ASSERT_EQ(readModelFile(dir + std::string(e.fileName), model, prompter), 1);
    EXPECT_TRUE(prompter.messages().empty());
    EXPECT_EQ(model.fileVersion, kModelFileVersion);
    EXPECT_EQ(checkSizes(model), "");
    EXPECT_NE(library.find(std::string(e.description)), std::string::npos);
  }
  EXPECT_EQ(defaultExample().fileName, "track1.ovi");  // what `make run` shows
}

}  // namespace
}  // namespace ovaro
