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
  for (char c : text) c == '~' ? out.emplace_back() : (out.back() += c);
  if (out.back().empty()) out.pop_back();
  return out;
}

std::string serialized(const Model& model, RecordingPrompter* shown = nullptr) {
  std::string text;
  RecordingPrompter prompter;
  EXPECT_TRUE(serializeModel(model, "m.ovi", text, shown ? *shown : prompter));
  return text;
}

// The model file of b is that of a: the reader missed nothing the writer wrote.
void expectSameModel(const Model& a, const Model& b) {
  EXPECT_EQ(serialized(a), serialized(b));
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
  pindyck.flags.systemForm = opt::kPindyck, pindyck.flags.forwardVars = opt::kForwardYes;
  pindyck.flags.policyToParam = opt::kPolicyYes, pindyck.flags.zForm = opt::kZTimeVarying;
  pindyck.flags.wForm = opt::kWTimeVarying, pindyck.flags.lambdaForm = opt::kLambdaTimeVarying;
  pindyck.flags.xdesForm = opt::kXdesBoth, pindyck.flags.udesForm = opt::kUdesTimeVarying;
  ModelShape meas{.n = 2, .m = 2, .np = 3, .ny = 1, .nmc = 7};
  meas.initialPeriod = 2021, meas.terminalPeriod = 2027, meas.maxLead = 1;
  meas.flags.forwardVars = opt::kForwardYes, meas.flags.wForm = opt::kWTerminalDifferent;
  meas.flags.xdesForm = opt::kXdesTimeVarying, meas.flags.randomSource = opt::kReadIn;
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
  EXPECT_EQ(serialized(model), dataFile("current_1x1.ovi"));
}

// An old file reads with the upgrade warning, keeping of the model what the old layout lacks;
// what the model then holds is kept in tests/data/model_files/v*_read.ovi in the current layout.
TEST(ModelFile, OldVersionsReadWithTheUpgradeWarningKeepingWhatTheyLack) {
  for (int version : {310, 316}) {
    SCOPED_TRACE(version);
    Model model;
    model.dims.setToleranceText("0.5");  // no tolerance field before 321
    model.description = "previous";
    model.randomSwitches = RandomSwitches{0, 1, 1, 0, 0, 1};
    model.display.words = {1, 1, 0, 1, 0, 0, 1};
    model.flags.reservedWord = "kept";
    const std::string name = "v" + std::to_string(version);
    RecordingPrompter prompter;
    ASSERT_EQ(readModelBytes(dataFile(name + ".ovi"), name, model, prompter), 1);
    EXPECT_EQ(testing::shown(prompter),
              std::vector<std::string>{"Warning: Input File Version Out of Date: Please upgrade: "
                                       "Do File:Save, then exit and restart Ovaro."});
    EXPECT_EQ(model.fileVersion, version);
    EXPECT_EQ(serialized(model), dataFile(name + "_read.ovi"));
  }
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

// A file is read as its length modulo 65536 bytes (a 70000-byte file as its first 4464 bytes),
// and from exactly 128000 bytes with a warning.
TEST(ModelFile, LongFilesAreReadModulo65536BytesAndWarnFrom128000) {
  Model model = makeModel(ModelShape{.n = 40});
  for (int r = 0; r < 40; ++r)
    for (int c = 0; c < 40; ++c) model.matrix(MatrixId::A)->setCell(r, c, "1.25");
  TempDir dir;
  for (std::size_t size : {std::size_t{70000}, std::size_t{127999}, std::size_t{128000}}) {
    SCOPED_TRACE(size);
    std::string bytes = serialized(model);  // padded behind its description
    bytes.resize(size, 'x');
    spit(dir.file("long.ovi"), bytes);
    RecordingPrompter prompter;
    Model back;
    ASSERT_EQ(readModelFile(dir.file("long.ovi"), back, prompter), 1);
    EXPECT_EQ(testing::shown(prompter).size(), size < 128000 ? 0u : 1u);
    // The fields of the bytes read, split independently. A follows the 44 header fields and the
    // labels: 40 state acronyms and names, one control, one exogenous variable, 4 periods.
    const std::vector<std::string> head = splitFields(bytes.substr(0, size % 65536));
    const std::size_t fieldsBeforeA = 44 + 2 * 40 + 2 + 2 + 4;
    ASSERT_EQ(head.size() < fieldsBeforeA + 1600, size == 70000);  // A straddles the cut
    for (std::size_t k = 0; k < 1600; ++k)
      ASSERT_EQ(back.matrix(MatrixId::A)->cell(int(k / 40), int(k % 40)),
                fieldsBeforeA + k < head.size() ? head[fieldsBeforeA + k] : "")
          << "cell " << k;
    EXPECT_EQ(back.matrix(MatrixId::G)->cell(0, 0), size == 70000 ? "" : "0");  // past the end
  }
}

TEST(ModelFile, EveryTruncationOfAFileReadsWithoutOverrun) {
  Model model = makeModel(ModelShape{.np = 2, .ny = 2}, opt::kMeasurementError);
  fillDistinct(model);
  const std::string text = serialized(model);
  int accepted = 0;
  for (std::size_t len = 0; len <= text.size(); ++len) {
    Model back;
    RecordingPrompter prompter;
    const int ok = readModelBytes(std::string_view(text).substr(0, len), "t.ovi", back, prompter);
    ASSERT_TRUE(ok == 0 || ok == 1);
    if (ok == 0) continue;  // the cut fell inside the sizes, which then read out of range
    ++accepted;
    if (len == text.size()) expectSameModel(model, back);
    // Whatever was cut off reads as empty (or as the start of the cut field), never as a
    // neighbour's text.
    for (int i = 0; i < kMatrixCount; ++i) {
      const auto id = static_cast<MatrixId>(i);
      const TextMatrix *got = back.matrix(id), *want = model.matrix(id);
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
  std::vector<std::string> f = splitFields(serialized(makeModel(ModelShape{})));
  // Labels start after 1 + 2 + 11 + 9 + 8 + 6 + 7 = 44 fields, A after the 12 label fields.
  const std::pair<std::size_t, std::size_t> cut[] = {{1, 8},   {2, 47},  {44, 8},
                                                     {46, 48}, {56, 15}, {f.size() - 1, 31999}};
  std::string text;
  for (auto [field, slot] : cut) f[field] = std::string(slot + 1 + field % 3 * 20, 'a');
  for (const auto& x : f) text += x + "~";
  Model back;
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(text, "o.ovi", back, prompter), 1);
  const std::size_t got[] = {back.acronym.size(),
                             back.name.size(),
                             back.states.acronyms[0].size(),
                             back.states.names[0].size(),
                             back.matrix(MatrixId::A)->cell(0, 0).size(),
                             back.description.size()};
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(got[i], cut[i].second) << cut[i].first;
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
  expectSameModel(before, model);
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
  RecordingPrompter prompter, p;
  const std::string text = serialized(model, &prompter);
  EXPECT_EQ(testing::shown(prompter), leadError);
  EXPECT_EQ(text.find("D10.0"), std::string::npos);  // no lead matrix written
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
  const std::vector<std::string> f = splitFields(serialized(model));
  ASSERT_GE(f.size(), 15u);
  EXPECT_EQ(std::vector<std::string>(f.begin(), f.begin() + 15),
            (std::vector<std::string>{"321", "", "", "", "", "", "", "", "", "", "", "", "", "",
                                      "0"}));  // criterion form: no option chosen
  Model back;
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(serialized(model), "empty.ovi", back, prompter), 1);
  EXPECT_EQ(back.dims.n.text, "");
  EXPECT_EQ(back.dims.nt.value, 1);
}

TEST(ModelFile, SaveRefusesAMissingWAndTheFieldSeparatorLeavingTheFile) {
  TempDir dir;
  const std::string path = dir.file("keep.ovi");
  spit(path, "old content");
  Model noW = makeModel(ModelShape{}), tilde = noW;
  noW.dropMatrix(MatrixId::W);
  tilde.matrix(MatrixId::B)->setCell(0, 0, "1~2");
  for (const auto& [model, text] :
       {std::pair{&noW, "lpszMatW is NULL"}, {&tilde, "B holds the character '~'"}}) {
    RecordingPrompter prompter;
    EXPECT_EQ(writeModelFile(path, *model, prompter), 0);
    ASSERT_EQ(prompter.messages().size(), 1u);
    EXPECT_EQ(prompter.messages()[0].caption, "Error!");
    EXPECT_NE(prompter.messages()[0].text.find(text), std::string::npos);
    EXPECT_EQ(slurp(path), "old content");
  }
}

// W constant -> terminal different without the transformation: WN is called for but not held,
// and an X0 of the wrong height is kept as far as it goes.
TEST(ModelFile, AFormChangedWithoutItsDataStillSavesAReadableFile) {
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
}

// Saving over a longer file keeps its tail behind the description; saving through a link
// replaces the target and keeps its permissions.
TEST(ModelFile, SavingOverAFileKeepsItsTailItsLinkAndItsPermissions) {
  Model longer = makeModel(ModelShape{.n = 6}), shorter = makeModel(ModelShape{});
  fillDistinct(longer);
  fillDistinct(shorter);
  shorter.description = "short";
  TempDir dir;
  const std::string path = dir.file("m.ovi"), link = dir.file("link.ovi");
  std::filesystem::create_symlink(path, link);
  RecordingPrompter prompter;
  ASSERT_EQ(writeModelFile(path, longer, prompter), 1);
  ASSERT_EQ(chmod(path.c_str(), 0640), 0);
  const std::string oldBytes = slurp(path), fresh = serialized(shorter);
  ASSERT_EQ(writeModelFile(link, shorter, prompter), 1);
  ASSERT_LT(fresh.size(), oldBytes.size());
  EXPECT_EQ(slurp(path), fresh + oldBytes.substr(fresh.size()));
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  struct stat st {};
  ASSERT_EQ(stat(path.c_str(), &st), 0);
  EXPECT_EQ(st.st_mode & 0777, 0640u);
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
}

}  // namespace
}  // namespace ovaro
