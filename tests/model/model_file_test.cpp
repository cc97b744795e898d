#include "model/model_file.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "model/conversion.h"
#include "support/model_fixtures.h"
#include "support/temp_dir.h"
#include "support/test_data.h"

namespace ovaro {
namespace {

using testing::fillDistinct;
using testing::makeModel;
using testing::ModelShape;
using testing::slurp;
using testing::spit;
using testing::TempDir;

// A model file kept under tests/data/model_files/, one group of fields a line.
std::string dataFile(const std::string& name) {
  std::string text;
  for (const std::string& line : testing::dataLines("model_files/" + name)) text += line;
  return text;
}

std::vector<std::string> splitFields(const std::string& text) {
  std::vector<std::string> out(1);
  for (char c : text) {
    if (c == '~') {
      out.emplace_back();
    } else {
      out.back().push_back(c);
    }
  }
  if (out.back().empty()) out.pop_back();
  return out;
}

std::string joinFields(const std::vector<std::string>& f) {
  std::string s;
  for (const auto& x : f) s += x + "~";
  return s;
}

// b is a read back through a model file (`throughFile`), or should be a itself.
void expectSameModel(const Model& a, const Model& b, bool throughFile = true) {
  EXPECT_EQ(a.acronym, b.acronym);
  EXPECT_EQ(a.name, b.name);
  EXPECT_EQ(a.description, b.description);
  EXPECT_EQ(a.dims, b.dims);
  EXPECT_EQ(a.flags, b.flags);
  EXPECT_EQ(a.randomSwitches, b.randomSwitches);
  EXPECT_EQ(a.display, b.display);
  for (LabelKind k : {LabelKind::States, LabelKind::Controls, LabelKind::Exogenous,
                      LabelKind::Periods, LabelKind::Observations, LabelKind::Parameters})
    EXPECT_EQ(a.labels(k), b.labels(k)) << "label table " << static_cast<int>(k);
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    ASSERT_EQ(a.holds(id), b.holds(id)) << matrixSpec(id).name;
    if (!a.holds(id)) continue;
    // Matrices the file does not hold for these flags come back as fresh "0" cells.
    const bool kept = !throughFile || storedInFile(a, id);
    const TextMatrix fresh(a.matrix(id)->rows(), a.matrix(id)->cols());
    EXPECT_EQ(kept ? *a.matrix(id) : fresh, *b.matrix(id)) << matrixSpec(id).name;
  }
}

Model roundTrip(const Model& model, RecordingPrompter& prompter) {
  TempDir dir;
  const std::string path = dir.file("m.ovi");
  EXPECT_EQ(writeModelFile(path, model, prompter), 1);
  Model back;
  EXPECT_EQ(readModelFile(path, back, prompter), 1);
  EXPECT_EQ(back.fileVersion, kModelFileVersion);
  return back;
}

TEST(ModelFile, SaveAndReadBackReproducesEveryTextLabelFlagAndTheDescription) {
  ModelShape pindyck{.n = 3, .m = 2, .l = 2, .np = 2, .nmc = 50, .maxLead = 3};
  pindyck.flags = {0,
                   opt::kQuadraticTracking,
                   opt::kPindyck,
                   opt::kForwardYes,
                   opt::kPolicyYes,
                   opt::kZTimeVarying,
                   opt::kWTimeVarying,
                   opt::kLambdaTimeVarying,
                   opt::kXdesBoth,
                   opt::kUdesTimeVarying,
                   opt::kGenerateInternally,
                   opt::kOption450,
                   opt::kOption453,
                   "0"};
  ModelShape meas{.n = 2, .m = 2, .np = 3, .ny = 1, .nmc = 7};
  meas.initialPeriod = 2021, meas.terminalPeriod = 2027, meas.maxLead = 1;
  meas.flags.forwardVars = opt::kForwardYes;
  meas.flags.wForm = opt::kWTerminalDifferent;
  meas.flags.xdesForm = opt::kXdesTimeVarying;
  meas.flags.randomSource = opt::kReadIn;
  ModelShape additive;
  additive.flags.wForm = opt::kWTimeVarying;
  const std::pair<ModelShape, int> cases[] = {{ModelShape{}, opt::kDeterministic},
                                              {pindyck, opt::kParameterUncertainty},
                                              {meas, opt::kMeasurementError},
                                              {additive, opt::kAdditiveNoise}};
  for (const auto& [shape, stoch] : cases) {
    SCOPED_TRACE(stoch);
    Model model = makeModel(shape, stoch);
    fillDistinct(model);
    model.randomSwitches = RandomSwitches{1, 0, 1, 1, 0, 1};
    model.display.words = {0, 1, 1, 0, 1, 0, 1};
    model.display.orientation = opt::kPeriodsAsColumns;
    model.flags.reservedWord = "7";
    model.matrix(MatrixId::X0)->setCell(0, 0, "1.0E-06");
    model.matrix(MatrixId::X0)->setCell(1, 0, "-123456.7890123");  // 15 characters
    model.states.names[0] = std::string(48, 'N');                  // a full name slot
    RecordingPrompter prompter;
    expectSameModel(model, roundTrip(model, prompter));
    EXPECT_TRUE(prompter.messages().empty());
  }
}

TEST(ModelFile, CurrentVersionWritesItsFieldsInOrder) {
  Model model = makeModel(ModelShape{.n = 1, .m = 1, .l = 1, .terminalPeriod = 2});
  model.acronym = "ACR";
  model.name = "Name";
  model.randomSwitches = RandomSwitches{1, 0, 0, 0, 0, 1};
  model.display.words = {0, 0, 0, 1, 0, 0, 0};
  model.states = {{"X"}, {"Output gap"}};
  model.controls = {{"U"}, {"Rate"}};
  model.exogenous = {{"Z1"}, {"World"}};
  model.periods = {{"P1", "P2"}, {}};
  const std::pair<MatrixId, const char*> cells[] = {
      {MatrixId::A, "0.9"},       {MatrixId::B, "0.5"},      {MatrixId::C, "1"},
      {MatrixId::Z, "2"},         {MatrixId::X0, "1.0E-06"}, {MatrixId::W, "1"},
      {MatrixId::LAMBDA, "0.25"}, {MatrixId::X0DEV, "9"}};  // not written: no measurement error
  for (const auto& [id, v] : cells) model.matrix(id)->setCell(0, 0, v);
  model.description = "Desc";
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "m.ovi", text, prompter));
  EXPECT_EQ(text, dataFile("current_1x1.ovi"));
}

struct CellCheck {
  MatrixId id;
  int r, c;
  const char* text;
};

TEST(ModelFile, ReadsAVersion316FileWithTheUpgradeWarning) {
  Model model;
  model.dims.setToleranceText("0.5");
  model.randomSwitches.certainButDifferent = 1;
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(dataFile("v316.ovi"), "old.ovi", model, prompter), 1);
  EXPECT_EQ(testing::shown(prompter),
            std::vector<std::string>{"Warning: Input File Version Out of Date: Please upgrade: Do "
                                     "File:Save, then exit and restart Ovaro."});
  EXPECT_EQ(model.fileVersion, 316);
  EXPECT_EQ(model.dims.toleranceText, "0.5");  // no tolerance field before 321: kept
  EXPECT_EQ(model.dims.iterlim.value, 5);
  EXPECT_EQ(model.dims.nmc.value, 10);
  EXPECT_EQ(model.flags.policyToParam, opt::kPolicyNo);
  EXPECT_EQ(model.flags.zForm, opt::kZTimeVarying);
  EXPECT_EQ(model.flags.stochTerms, opt::kMeasurementError);
  EXPECT_EQ(model.flags.option450, 451);
  EXPECT_EQ(model.flags.reservedWord, "R");
  EXPECT_EQ(model.randomSwitches, (RandomSwitches{1, 1, 0, 1, 0, 1}));
  EXPECT_EQ(model.display.orientation, opt::kPeriodsAsColumns);
  EXPECT_EQ(model.parameters.acronyms[0], "TH1");
  EXPECT_EQ(model.observations.names[0], "Obs");
  EXPECT_EQ(model.description, "An old description");
  // ZETAS and ETAS keep their first nt - 1 columns; no G, g before 317, no N before 319.
  EXPECT_EQ(model.matrix(MatrixId::ZETAS)->cols(), 2);
  const CellCheck checks[] = {{MatrixId::A, 1, 0, "a10"},      {MatrixId::ZT, 0, 1, "zt01"},
                              {MatrixId::Q, 1, 1, "q11"},      {MatrixId::ITHN, 0, 2, "it02"},
                              {MatrixId::XSIS, 1, 1, "xs11"},  {MatrixId::SITT0, 0, 0, "st00"},
                              {MatrixId::TH0DIFF, 0, 0, "0"},  {MatrixId::ZETAS, 0, 1, "ze01"},
                              {MatrixId::ETAS, 0, 0, "et00"},  {MatrixId::TH0DEV, 0, 0, "td00"},
                              {MatrixId::X0DEV, 1, 0, "xv10"}, {MatrixId::G, 0, 1, "0"},
                              {MatrixId::g, 0, 0, "0"},        {MatrixId::N, 0, 0, "0"}};
  for (const CellCheck& k : checks)
    EXPECT_EQ(model.matrix(k.id)->cell(k.r, k.c), k.text) << matrixSpec(k.id).name;
}

TEST(ModelFile, ReadsAVersion310FileKeepingWhatItLacks) {
  Model model;
  model.description = "previous";
  model.randomSwitches = RandomSwitches{0, 1, 1, 0, 0, 1};
  model.display.words = {1, 1, 0, 1, 0, 0, 1};
  model.flags.reservedWord = "kept";
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(dataFile("v310.ovi"), "v310.ovi", model, prompter), 1);
  EXPECT_EQ(prompter.messages().size(), 1u);  // the upgrade warning
  EXPECT_EQ(model.flags.stochTerms, opt::kParameterUncertainty);
  EXPECT_EQ(model.flags.randomSource, opt::kReadIn);
  EXPECT_EQ(model.flags.reservedWord, "kept");
  EXPECT_EQ(model.randomSwitches, (RandomSwitches{0, 1, 1, 0, 0, 1}));
  EXPECT_EQ(model.display.words, (std::array<int, 7>{1, 1, 0, 1, 0, 0, 1}));
  EXPECT_EQ(model.description, "");
  EXPECT_EQ(model.matrix(MatrixId::ZT)->cols(), 2);
  const CellCheck checks[] = {{MatrixId::ZT, 0, 1, "zt01"},
                              {MatrixId::X0, 0, 0, "x00"},  // the nt-th ZT column was skipped
                              {MatrixId::TH0, 0, 0, "th00"},
                              {MatrixId::ITHN, 0, 1, "it01"},
                              {MatrixId::XSIS, 0, 1, "xs01"}};
  for (const CellCheck& k : checks)
    EXPECT_EQ(model.matrix(k.id)->cell(k.r, k.c), k.text) << matrixSpec(k.id).name;
}

TEST(ModelFile, StochasticTermsFollowTheLastWordThatIsOne) {
  const std::string head = "321~~~0~0~0~1~1~0~0~0~0~0~0~400~402~404~406~410~412~415~417~420~";
  const std::tuple<const char*, int, int> cases[] = {
      {"1~0~0~0", 0, opt::kDeterministic},
      {"1~0~1~0", 0, opt::kParameterUncertainty},
      {"0~1~0~1", 0, opt::kMeasurementError},
      {"0~0~0~0", opt::kAdditiveNoise, opt::kAdditiveNoise}};
  for (const auto& [words, previous, expected] : cases) {
    Model model;
    model.flags.stochTerms = previous;
    RecordingPrompter prompter;
    ASSERT_EQ(readModelBytes(head + words + "~450~452~455~0~", "s.ovi", model, prompter), 1);
    EXPECT_EQ(model.flags.stochTerms, expected) << words;
  }
}

// A model file padded behind its description to `size` bytes.
std::string paddedModelFile(const Model& model, std::size_t size) {
  std::string text;
  RecordingPrompter prompter;
  EXPECT_TRUE(serializeModel(model, "p.ovi", text, prompter));
  EXPECT_LT(text.size(), size);
  text.resize(size, 'x');
  return text;
}

TEST(ModelFile, SizeWarningFromExactly128000Bytes) {
  const Model model = makeModel(ModelShape{});
  TempDir dir;
  for (std::size_t size : {std::size_t{127999}, std::size_t{128000}}) {
    spit(dir.file("big.ovi"), paddedModelFile(model, size));
    RecordingPrompter prompter;
    Model back;
    ASSERT_EQ(readModelFile(dir.file("big.ovi"), back, prompter), 1);
    EXPECT_EQ(testing::shown(prompter),
              size < 128000 ? std::vector<std::string>{}
                            : std::vector<std::string>{"Input File Longer Than 128000 Bytes: "
                                                       "Warning! Input File Very Large."});
    EXPECT_EQ(*back.matrix(MatrixId::A), *model.matrix(MatrixId::A));
  }
}

TEST(ModelFile, A70000ByteFileIsReadOnlyAsItsFirst4464Bytes) {
  Model model = makeModel(ModelShape{.n = 40});
  for (int r = 0; r < 40; ++r)
    for (int c = 0; c < 40; ++c) model.matrix(MatrixId::A)->setCell(r, c, "1.25");
  const std::string bytes = paddedModelFile(model, 70000);
  ASSERT_GT(bytes.find("x"), 4464u);  // the A matrix straddles the cut
  TempDir dir;
  spit(dir.file("long.ovi"), bytes);
  RecordingPrompter prompter;
  Model back;
  ASSERT_EQ(readModelFile(dir.file("long.ovi"), back, prompter), 1);

  // The fields of the first 4464 bytes, split independently. A follows the 44 header fields and
  // the labels: 40 state acronyms and names, one control, one exogenous variable, 4 periods.
  const std::vector<std::string> head = splitFields(bytes.substr(0, 4464));
  const std::size_t fieldsBeforeA = 44 + 2 * 40 + 2 + 2 + 4;
  for (int k = 0; k < 1600; ++k) {
    const std::size_t field = fieldsBeforeA + static_cast<std::size_t>(k);
    ASSERT_EQ(back.matrix(MatrixId::A)->cell(k / 40, k % 40),
              field < head.size() ? head[field] : "")
        << "cell " << k;
  }
  EXPECT_EQ(back.matrix(MatrixId::G)->cell(0, 0), "");  // past the end: empty
  EXPECT_EQ(back.description, "");
}

TEST(ModelFile, EveryTruncationOfAFileReadsWithoutOverrun) {
  Model model = makeModel(ModelShape{.np = 2, .ny = 2}, opt::kMeasurementError);
  fillDistinct(model);
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "t.ovi", text, prompter));
  int accepted = 0;
  for (std::size_t len = 0; len <= text.size(); ++len) {
    Model back;
    const int ok = readModelBytes(std::string_view(text).substr(0, len), "t.ovi", back, prompter);
    ASSERT_TRUE(ok == 0 || ok == 1);
    if (ok == 0) continue;  // the cut fell inside the sizes, which then read out of range
    ++accepted;
    if (len == text.size()) expectSameModel(model, back);
    // Whatever was cut off reads as empty (or as the start of the cut field), never as a
    // neighbour's text.
    for (int i = 0; i < kMatrixCount; ++i) {
      const auto id = static_cast<MatrixId>(i);
      const TextMatrix* got = back.matrix(id);
      const TextMatrix* want = model.matrix(id);
      if (got == nullptr || want == nullptr || got->rows() != want->rows() ||
          got->cols() != want->cols() || !storedInFile(back, id))
        continue;
      for (int r = 0; r < got->rows(); ++r)
        for (int c = 0; c < got->cols(); ++c)
          ASSERT_TRUE(want->cell(r, c).starts_with(got->cell(r, c)))
              << matrixSpec(id).name << " cut at " << len << ": " << got->cell(r, c);
    }
  }
  EXPECT_GT(accepted, static_cast<int>(text.size()) / 2);
}

TEST(ModelFile, FieldsLongerThanTheirSlotsAreShortenedWithOneWarning) {
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(makeModel(ModelShape{}), "o.ovi", text, prompter));
  std::vector<std::string> f = splitFields(text);
  // Labels start after 1 + 2 + 11 + 9 + 8 + 6 + 7 = 44 fields, A after the 12 label fields.
  f[1] = std::string(40, 'A');         // model acronym: 8
  f[2] = std::string(60, 'B');         // model name: 47
  f[44] = std::string(9, 'S');         // first state acronym: 8
  f[46] = std::string(49, 'N');        // first state name: 48
  f[56] = std::string(16, '7');        // first cell of A: 15
  f.back() = std::string(40000, 'd');  // description: 31999
  Model back;
  ASSERT_EQ(readModelBytes(joinFields(f), "o.ovi", back, prompter), 1);
  EXPECT_EQ(back.acronym, std::string(8, 'A'));
  EXPECT_EQ(back.name, std::string(47, 'B'));
  EXPECT_EQ(back.states.acronyms[0], std::string(8, 'S'));
  EXPECT_EQ(back.states.names[0], std::string(48, 'N'));
  EXPECT_EQ(back.matrix(MatrixId::A)->cell(0, 0), std::string(15, '7'));
  EXPECT_EQ(back.description.size(), 31999u);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!");
  EXPECT_EQ(prompter.messages()[0].text.substr(0, 21), "6 field(s) of o.ovi w");
}

TEST(ModelFile, OutOfRangeSizesAreRefusedAndTheModelKept) {
  Model model = makeModel(ModelShape{});
  fillDistinct(model);
  const Model before = model;
  RecordingPrompter prompter;
  EXPECT_EQ(readModelBytes("321~BAD~Bad~-3~1~1~1~4~0~0~1E-6~0~0~0~", "bad.ovi", model, prompter),
            0);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Error");
  EXPECT_NE(prompter.messages()[0].text.find("n = -3"), std::string::npos);
  EXPECT_NE(prompter.messages()[0].text.find("bad.ovi"), std::string::npos);
  expectSameModel(before, model, /*throughFile=*/false);

  TempDir dir;
  RecordingPrompter quiet;
  EXPECT_EQ(readModelFile(dir.file("missing.ovi"), model, quiet), 0);
  EXPECT_EQ(readModelFile(dir.path().string(), model, quiet), 0);
  EXPECT_TRUE(quiet.messages().empty());
}

TEST(ModelFile, MaximumLeadOutsideOneToThreeSkipsTheLeadMatrices) {
  ModelShape s{.n = 1, .m = 1, .l = 1, .maxLead = 4};
  s.flags.forwardVars = opt::kForwardYes;
  Model model = makeModel(s);
  fillDistinct(model);
  const std::vector<std::string> leadError{"Error: Maximum Lead must be 1, 2 or 3."};
  std::string text;
  RecordingPrompter prompter, p;
  ASSERT_TRUE(serializeModel(model, "lead.ovi", text, prompter));
  EXPECT_EQ(testing::shown(prompter), leadError);
  EXPECT_EQ(text.find("D10.0"), std::string::npos);  // no lead matrix written
  EXPECT_NE(text.find("~C0.0~Z0.0~"), std::string::npos);
  Model back;
  ASSERT_EQ(readModelBytes(text, "lead.ovi", back, p), 1);
  EXPECT_EQ(testing::shown(p), leadError);
  EXPECT_EQ(back.matrix(MatrixId::D1)->cell(0, 0), "0");
  EXPECT_EQ(back.matrix(MatrixId::Z)->cell(0, 0), "Z0.0");  // later fields in step
  EXPECT_EQ(back.description, model.description);
}

TEST(ModelFile, ClearedModelSavesEmptySizeFields) {
  Model model;
  clearModel(model);
  TempDir dir;
  RecordingPrompter prompter;
  const std::string path = dir.file("empty.ovi");
  ASSERT_EQ(writeModelFile(path, model, prompter), 1);
  const std::vector<std::string> f = splitFields(slurp(path));
  ASSERT_GE(f.size(), 15u);
  EXPECT_EQ(std::vector<std::string>(f.begin(), f.begin() + 15),
            (std::vector<std::string>{"321", "", "", "", "", "", "", "", "", "", "", "", "", "",
                                      "0"}));  // criterion form: no option chosen
  Model back;
  ASSERT_EQ(readModelFile(path, back, prompter), 1);
  EXPECT_EQ(back.dims.n.text, "");
  EXPECT_EQ(back.dims.nt.value, 1);
}

TEST(ModelFile, SaveRefusesAMissingWAndTheFieldSeparatorLeavingTheFile) {
  TempDir dir;
  const std::string path = dir.file("keep.ovi");
  spit(path, "old content");
  Model noW = makeModel(ModelShape{});
  noW.dropMatrix(MatrixId::W);
  Model tilde = makeModel(ModelShape{});
  tilde.matrix(MatrixId::B)->setCell(0, 0, "1~2");
  const std::pair<const Model*, const char*> cases[] = {{&noW, "lpszMatW is NULL"},
                                                        {&tilde, "B holds the character '~'"}};
  for (const auto& [model, text] : cases) {
    RecordingPrompter prompter;
    EXPECT_EQ(writeModelFile(path, *model, prompter), 0);
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages()[0].caption, "Error!");
    EXPECT_NE(prompter.messages()[0].text.find(text), std::string::npos);
    EXPECT_EQ(slurp(path), "old content");
  }
}

TEST(ModelFile, AFormChangedWithoutItsDataStillSavesAReadableFile) {
  // W constant -> terminal different without the transformation: WN is called for but not held,
  // and an X0 of the wrong height is kept as far as it goes.
  Model model = makeModel(ModelShape{});
  fillDistinct(model);
  model.flags.wForm = opt::kWTerminalDifferent;
  model.setMatrix(MatrixId::X0, TextMatrix(1, 1));
  model.matrix(MatrixId::X0)->setCell(0, 0, "7");
  RecordingPrompter prompter;
  const Model back = roundTrip(model, prompter);
  EXPECT_TRUE(prompter.messages().empty());
  EXPECT_EQ(*back.matrix(MatrixId::WN), TextMatrix(2, 1));
  EXPECT_EQ(back.matrix(MatrixId::X0)->cell(0, 0), "7");
  EXPECT_EQ(back.matrix(MatrixId::X0)->cell(1, 0), "0");
  EXPECT_EQ(*back.matrix(MatrixId::G), *model.matrix(MatrixId::G));  // later fields in step
  EXPECT_EQ(back.description, model.description);
}

TEST(ModelFile, SavingOverALongerFileKeepsItsTailBehindTheDescription) {
  Model longer = makeModel(ModelShape{.n = 6});
  fillDistinct(longer);
  Model shorter = makeModel(ModelShape{});
  fillDistinct(shorter);
  shorter.description = "short";
  TempDir dir;
  const std::string path = dir.file("m.ovi");
  RecordingPrompter prompter;
  ASSERT_EQ(writeModelFile(path, longer, prompter), 1);
  const std::string oldBytes = slurp(path);
  ASSERT_EQ(writeModelFile(path, shorter, prompter), 1);
  std::string fresh;
  ASSERT_TRUE(serializeModel(shorter, "m.ovi", fresh, prompter));
  ASSERT_LT(fresh.size(), oldBytes.size());
  EXPECT_EQ(slurp(path), fresh + oldBytes.substr(fresh.size()));
  Model back;
  ASSERT_EQ(readModelFile(path, back, prompter), 1);
  expectSameModel(shorter, back);
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(ModelFile, AFailedWriteLeavesTheOldFileWholeAndNoTemporaryFile) {
  TempDir dir;
  const std::string path = dir.file("safe.ovi");
  spit(path, "321~the previous model~");
  const Model model = makeModel(ModelShape{.n = 20});
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // A file-size limit makes the writes come up short, as a full disk would.
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit {
      512, 512
    };
    setrlimit(RLIMIT_FSIZE, &limit);
    RecordingPrompter prompter;
    _exit(writeModelFile(path, model, prompter) == 0 ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0) << "the write should have failed";
  EXPECT_EQ(slurp(path), "321~the previous model~");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);
}

TEST(ModelFile, SavingThroughALinkReplacesTheTargetAndKeepsItsPermissions) {
  TempDir dir;
  const std::string target = dir.file("target.ovi");
  const std::string link = dir.file("link.ovi");
  spit(target, "x");
  ASSERT_EQ(chmod(target.c_str(), 0640), 0);
  std::filesystem::create_symlink(target, link);
  const Model model = makeModel(ModelShape{});
  RecordingPrompter prompter;
  ASSERT_EQ(writeModelFile(link, model, prompter), 1);
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  struct stat st {};
  ASSERT_EQ(stat(target.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
  Model back;
  ASSERT_EQ(readModelFile(link, back, prompter), 1);
  expectSameModel(model, back);
}

TEST(ModelFile, SavingAFileTooLongToReadBackWarns) {
  Model model = makeModel(ModelShape{.n = 100});
  for (int r = 0; r < 100; ++r)
    for (int c = 0; c < 100; ++c) model.matrix(MatrixId::A)->setCell(r, c, "0.123456789");
  TempDir dir;
  RecordingPrompter prompter;
  ASSERT_EQ(writeModelFile(dir.file("huge.ovi"), model, prompter), 1);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!");
  EXPECT_NE(prompter.messages()[0].text.find("will not read back whole"), std::string::npos);
  EXPECT_EQ(fileTitle("/home/u/models/huge.ovi"), "huge.ovi");
  EXPECT_EQ(fileTitle("huge.ovi"), "huge.ovi");
}

}  // namespace
}  // namespace ovaro
