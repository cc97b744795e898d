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

namespace ovaro {
namespace {

using testing::fillDistinct;
using testing::makeModel;
using testing::ModelShape;
using testing::slurp;
using testing::spit;
using testing::TempDir;

// The fields of a model file, assembled by hand in the order the format prescribes.
struct Fields {
  std::vector<std::string> f;
  Fields& add(std::string s) {
    f.push_back(std::move(s));
    return *this;
  }
  Fields& add(std::initializer_list<const char*> list) {
    for (const char* s : list) f.emplace_back(s);
    return *this;
  }
  // rows x cols cells "<tag><r><c>", row by row.
  Fields& matrix(const std::string& tag, int rows, int cols) {
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c) add(tag + std::to_string(r) + std::to_string(c));
    return *this;
  }
  std::string text() const {
    std::string s;
    for (const auto& x : f) s += x + "~";
    return s;
  }
};

std::vector<std::string> splitFields(const std::string& text) {
  std::vector<std::string> out;
  std::string cur;
  for (char c : text) {
    if (c == '~') {
      out.push_back(cur);
      cur.clear();
    } else {
      cur.push_back(c);
    }
  }
  if (!cur.empty()) out.push_back(cur);
  return out;
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
    const char* name = matrixSpec(id).name;
    ASSERT_EQ(a.holds(id), b.holds(id)) << name;
    if (!a.holds(id)) continue;
    // Matrices the file does not hold for these flags come back as fresh "0" cells.
    if (!throughFile || storedInFile(a, id)) {
      EXPECT_EQ(*a.matrix(id), *b.matrix(id)) << name;
    } else {
      EXPECT_EQ(TextMatrix(a.matrix(id)->rows(), a.matrix(id)->cols()), *b.matrix(id)) << name;
    }
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
  struct Case {
    const char* what;
    ModelShape shape;
    int stoch;
  };
  std::vector<Case> cases;
  cases.push_back({"deterministic, constant forms", ModelShape{}, opt::kDeterministic});

  ModelShape pindyck{.n = 3, .m = 2, .l = 2, .np = 2, .nmc = 50, .maxLead = 3};
  SpecFlags& pf = pindyck.flags;
  pf.systemForm = opt::kPindyck;
  pf.forwardVars = opt::kForwardYes;
  pf.policyToParam = opt::kPolicyYes;
  pf.zForm = opt::kZTimeVarying;
  pf.wForm = opt::kWTimeVarying;
  pf.lambdaForm = opt::kLambdaTimeVarying;
  pf.xdesForm = opt::kXdesBoth;
  pf.udesForm = opt::kUdesTimeVarying;
  cases.push_back({"Pindyck, lead 3, time varying, parameter uncertainty", pindyck,
                   opt::kParameterUncertainty});

  ModelShape meas{.n = 2,
                  .m = 2,
                  .np = 3,
                  .ny = 1,
                  .nmc = 7,
                  .initialPeriod = 2021,
                  .terminalPeriod = 2027,
                  .maxLead = 1};
  meas.flags.forwardVars = opt::kForwardYes;
  meas.flags.wForm = opt::kWTerminalDifferent;
  meas.flags.xdesForm = opt::kXdesTimeVarying;
  meas.flags.randomSource = opt::kReadIn;
  cases.push_back(
      {"measurement error, lead 1, W terminal different", meas, opt::kMeasurementError});

  ModelShape additive;
  additive.flags.wForm = opt::kWTimeVarying;
  cases.push_back({"additive noise", additive, opt::kAdditiveNoise});

  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Model model = makeModel(c.shape, c.stoch);
    fillDistinct(model);
    model.randomSwitches = RandomSwitches{1, 0, 1, 1, 0, 1};
    model.display.words = {0, 1, 1, 0, 1, 0, 1};
    model.display.orientation = opt::kPeriodsAsColumns;
    model.flags.reservedWord = "7";
    model.matrix(MatrixId::X0)->setCell(0, 0, "1.0E-06");
    model.matrix(MatrixId::X0)->setCell(1, 0, "-123456.7890123");  // 15 characters
    model.states.names[0] = std::string(48, 'N');                  // a full name slot

    RecordingPrompter prompter;
    const Model back = roundTrip(model, prompter);
    EXPECT_TRUE(prompter.messages().empty());
    expectSameModel(model, back);
    EXPECT_EQ(back.matrix(MatrixId::X0)->cell(0, 0), "1.0E-06");
  }
}

TEST(ModelFile, CurrentVersionWritesItsFieldsInOrder) {
  ModelShape s;
  s.n = 1;
  s.m = 1;
  s.l = 1;
  s.terminalPeriod = 2;
  Model model = makeModel(s);
  model.acronym = "ACR";
  model.name = "Name";
  model.randomSwitches.uncertainParameters = 1;
  model.randomSwitches.timeVaryingParameters = 1;
  model.display.words = {0, 0, 0, 1, 0, 0, 0};
  model.states = {{"X"}, {"Output gap"}};
  model.controls = {{"U"}, {"Rate"}};
  model.exogenous = {{"Z1"}, {"World"}};
  model.periods = {{"P1", "P2"}, {}};
  model.matrix(MatrixId::A)->setCell(0, 0, "0.9");
  model.matrix(MatrixId::B)->setCell(0, 0, "0.5");
  model.matrix(MatrixId::C)->setCell(0, 0, "1");
  model.matrix(MatrixId::Z)->setCell(0, 0, "2");
  model.matrix(MatrixId::X0)->setCell(0, 0, "1.0E-06");
  model.matrix(MatrixId::W)->setCell(0, 0, "1");
  model.matrix(MatrixId::LAMBDA)->setCell(0, 0, "0.25");
  model.matrix(MatrixId::X0DEV)->setCell(0, 0, "9");  // not written: no measurement error
  model.description = "Desc";

  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "m.ovi", text, prompter));
  const std::string expected =
      "321~ACR~Name~"
      "1~1~1~1~2~0~10~1.0E-06~0~0~0~"         // n m l initial terminal lead iterlim tol np nmc ny
      "400~402~404~406~410~412~415~417~420~"  // forms
      "1~0~0~0~450~453~455~0~"                // stochastic group
      "1~0~0~0~0~1~"                          // random-terms switches
      "0~0~0~1~0~0~0~"                        // results-display words
      "X~Output gap~U~Rate~Z1~World~P1~P2~"   // labels
      "0.9~0.5~1~"                            // A B C
      "2~1.0E-06~1~0.25~0~0~"                 // Z X0 W LAMBDA XDES UDES
      "0~0~"                                  // G g
      "Desc~";
  EXPECT_EQ(text, expected);
}

TEST(ModelFile, ReadsAVersion316File) {
  // n = 2, m = 1, l = 1, periods 1..3 (nt = 3), np = 1, ny = 1, measurement error, Z time varying.
  Fields f;
  f.add({"316", "OLD", "Old model", "2", "1", "1", "1", "3", "0", "5", "1", "10", "1"});
  f.add({"400", "402", "404", "411", "412", "415", "417", "420"});  // no policy-to-parameter word
  f.add({"0", "0", "0", "1", "451", "452", "455", "R"});
  f.add({"1", "0", "1", "0", "1"});  // five switches: no "Certain But Different From Mean"
  f.add({"1", "0", "1", "0", "0", "0", "0"});
  f.add({"X1", "X2", "State one", "State two", "U1", "Control", "Z1", "Exo", "T1", "T2", "T3",
         "TH1", "Theta", "Y1", "Obs"});
  f.matrix("a", 2, 2).matrix("b", 2, 1).matrix("c", 2, 1);
  f.matrix("zt", 1, 2);  // 316 >= 315: nt - 1 columns
  f.matrix("x", 2, 1).matrix("w", 2, 1).matrix("l", 1, 1).matrix("xd", 2, 1).matrix("ud", 1, 1);
  // Before 318: TH0, SITT0, Q, ITHN, XSIS.
  f.matrix("th", 1, 1).matrix("st", 1, 1).matrix("q", 2, 2).matrix("it", 1, 3).matrix("xs", 2, 2);
  f.matrix("d", 1, 1).matrix("h", 1, 2).matrix("sx", 2, 2).matrix("tx", 1, 2).matrix("r", 1, 1);
  f.matrix("gm", 1, 1).matrix("ze", 1, 3).matrix("et", 1, 3);  // 316 still holds nt columns
  f.matrix("td", 1, 1).matrix("xv", 2, 1);
  f.add("An old description");

  Model model;
  model.dims.setToleranceText("0.5");
  model.randomSwitches.certainButDifferent = 1;
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(f.text(), "old.ovi", model, prompter), 1);

  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text,
            "Please upgrade: Do File:Save, then exit and restart Ovaro.");
  EXPECT_EQ(prompter.messages()[0].caption, "Warning: Input File Version Out of Date");

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
  EXPECT_EQ(model.matrix(MatrixId::A)->cell(1, 0), "a10");
  EXPECT_EQ(model.matrix(MatrixId::ZT)->cell(0, 1), "zt01");
  EXPECT_EQ(model.matrix(MatrixId::Q)->cell(1, 1), "q11");
  EXPECT_EQ(model.matrix(MatrixId::ITHN)->cell(0, 2), "it02");
  EXPECT_EQ(model.matrix(MatrixId::XSIS)->cell(1, 1), "xs11");
  EXPECT_EQ(model.matrix(MatrixId::SITT0)->cell(0, 0), "st00");
  EXPECT_EQ(model.matrix(MatrixId::TH0DIFF)->cell(0, 0), "0");  // not in the file
  // ZETAS and ETAS keep their first nt - 1 columns; the extra column is skipped.
  EXPECT_EQ(model.matrix(MatrixId::ZETAS)->cols(), 2);
  EXPECT_EQ(model.matrix(MatrixId::ZETAS)->cell(0, 1), "ze01");
  EXPECT_EQ(model.matrix(MatrixId::ETAS)->cell(0, 0), "et00");
  EXPECT_EQ(model.matrix(MatrixId::TH0DEV)->cell(0, 0), "td00");
  EXPECT_EQ(model.matrix(MatrixId::X0DEV)->cell(1, 0), "xv10");
  // No handcrafted rule before 317, no N before 319.
  EXPECT_EQ(model.matrix(MatrixId::G)->cell(0, 1), "0");
  EXPECT_EQ(model.matrix(MatrixId::g)->cell(0, 0), "0");
  EXPECT_EQ(model.matrix(MatrixId::N)->cell(0, 0), "0");
  EXPECT_EQ(model.description, "An old description");
}

TEST(ModelFile, ReadsAVersion310File) {
  // n = 1, m = 1, l = 1, periods 1..3, np = 1, parameter uncertainty, Z time varying.
  Fields f;
  f.add({"310", "V310", "Ancient", "1", "1", "1", "1", "3", "0", "0", "1", "4", "0"});
  f.add({"400", "402", "404", "411", "412", "415", "417", "420"});
  f.add({"0", "0", "1", "0", "450", "452", "454"});  // no reserved word before 313
  // No random-terms switches (314) and no results-display words (311).
  f.add({"X", "State", "U", "Control", "Z", "Exo", "T1", "T2", "T3", "TH", "Theta"});
  f.matrix("a", 1, 1).matrix("b", 1, 1).matrix("c", 1, 1);
  f.matrix("zt", 1, 3);  // before 315: nt columns
  f.matrix("x", 1, 1).matrix("w", 1, 1).matrix("l", 1, 1).matrix("xd", 1, 1).matrix("ud", 1, 1);
  f.matrix("th", 1, 1).matrix("st", 1, 1).matrix("q", 1, 1).matrix("it", 1, 3).matrix("xs", 1, 2);
  f.add("text after the last field");  // no description before 312: ignored

  Model model;
  model.description = "previous";
  model.randomSwitches = RandomSwitches{0, 1, 1, 0, 0, 1};
  model.display.words = {1, 1, 0, 1, 0, 0, 1};
  model.flags.reservedWord = "kept";
  RecordingPrompter prompter;
  ASSERT_EQ(readModelBytes(f.text(), "v310.ovi", model, prompter), 1);
  ASSERT_EQ(prompter.messages().size(), 1u);  // the upgrade warning
  EXPECT_EQ(model.flags.stochTerms, opt::kParameterUncertainty);
  EXPECT_EQ(model.flags.randomSource, opt::kReadIn);
  EXPECT_EQ(model.flags.reservedWord, "kept");
  EXPECT_EQ(model.randomSwitches, (RandomSwitches{0, 1, 1, 0, 0, 1}));
  EXPECT_EQ(model.display.words, (std::array<int, 7>{1, 1, 0, 1, 0, 0, 1}));
  EXPECT_EQ(model.matrix(MatrixId::ZT)->cols(), 2);
  EXPECT_EQ(model.matrix(MatrixId::ZT)->cell(0, 1), "zt01");
  EXPECT_EQ(model.matrix(MatrixId::X0)->cell(0, 0), "x00");  // the nt-th ZT column was skipped
  EXPECT_EQ(model.matrix(MatrixId::TH0)->cell(0, 0), "th00");
  EXPECT_EQ(model.matrix(MatrixId::ITHN)->cell(0, 1), "it01");
  EXPECT_EQ(model.matrix(MatrixId::XSIS)->cell(0, 1), "xs01");
  EXPECT_EQ(model.description, "");
}

TEST(ModelFile, StochasticTermsFollowTheLastWordThatIsOne) {
  auto stochOf = [](const char* words, int previous) {
    Fields f;
    f.add({"321", "", "", "0", "0", "0", "1", "1", "0", "0", "0", "0", "0", "0"});
    f.add({"400", "402", "404", "406", "410", "412", "415", "417", "420"});
    std::string text = f.text() + words + "~450~452~455~0~";
    Model model;
    model.flags.stochTerms = previous;
    RecordingPrompter prompter;
    EXPECT_EQ(readModelBytes(text, "s.ovi", model, prompter), 1);
    return model.flags.stochTerms;
  };
  EXPECT_EQ(stochOf("1~0~0~0", 0), opt::kDeterministic);
  EXPECT_EQ(stochOf("1~0~1~0", 0), opt::kParameterUncertainty);
  EXPECT_EQ(stochOf("0~1~0~1", 0), opt::kMeasurementError);
  EXPECT_EQ(stochOf("0~0~0~0", opt::kAdditiveNoise), opt::kAdditiveNoise);
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
    const std::string path = dir.file("big.ovi");
    spit(path, paddedModelFile(model, size));
    RecordingPrompter prompter;
    Model back;
    ASSERT_EQ(readModelFile(path, back, prompter), 1);
    if (size == 128000) {
      ASSERT_EQ(prompter.messages().size(), 1u);
      EXPECT_EQ(prompter.messages()[0].text, "Warning! Input File Very Large.");
      EXPECT_EQ(prompter.messages()[0].caption, "Input File Longer Than 128000 Bytes");
    } else {
      EXPECT_TRUE(prompter.messages().empty());
    }
    EXPECT_EQ(*back.matrix(MatrixId::A), *model.matrix(MatrixId::A));
  }
}

TEST(ModelFile, A70000ByteFileIsReadOnlyAsItsFirst4464Bytes) {
  ModelShape s;
  s.n = 40;
  Model model = makeModel(s);
  for (int r = 0; r < 40; ++r)
    for (int c = 0; c < 40; ++c) model.matrix(MatrixId::A)->setCell(r, c, "1.25");
  const std::string bytes = paddedModelFile(model, 70000);
  ASSERT_GT(bytes.find("x"), 4464u);  // the A matrix straddles the cut

  TempDir dir;
  const std::string path = dir.file("long.ovi");
  spit(path, bytes);
  RecordingPrompter prompter;
  Model back;
  ASSERT_EQ(readModelFile(path, back, prompter), 1);

  // The fields of the first 4464 bytes, split independently. A follows the 44 header fields and
  // the labels: 40 state acronyms and names, one control, one exogenous variable, 4 periods.
  const std::vector<std::string> head = splitFields(bytes.substr(0, 4464));
  const std::size_t fieldsBeforeA = 44 + 2 * 40 + 2 + 2 + 4;
  const TextMatrix& a = *back.matrix(MatrixId::A);
  for (int k = 0; k < 1600; ++k) {
    const std::size_t field = fieldsBeforeA + static_cast<std::size_t>(k);
    const std::string expected = field < head.size() ? head[field] : "";
    ASSERT_EQ(a.cell(k / 40, k % 40), expected) << "cell " << k;
  }
  EXPECT_EQ(a.cell(39, 39), "");
  EXPECT_EQ(back.matrix(MatrixId::G)->cell(0, 0), "");  // past the end: empty
  EXPECT_EQ(back.description, "");
}

TEST(ModelFile, EveryTruncationOfAFileReadsWithoutOverrun) {
  ModelShape s;
  s.np = 2;
  s.ny = 2;
  Model model = makeModel(s, opt::kMeasurementError);
  fillDistinct(model);
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "t.ovi", text, prompter));
  int accepted = 0;
  for (std::size_t len = 0; len <= text.size(); ++len) {
    Model back;
    RecordingPrompter p;
    const int ok = readModelBytes(std::string_view(text).substr(0, len), "t.ovi", back, p);
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
  Model model = makeModel(ModelShape{});
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "o.ovi", text, prompter));
  std::vector<std::string> f = splitFields(text);
  f[1] = std::string(40, 'A');  // model acronym: 8
  f[2] = std::string(60, 'B');  // model name: 47
  // Labels start after 1 + 2 + 11 + 9 + 8 + 6 + 7 = 44 fields: state acronym, state name, ...
  f[44] = std::string(9, 'S');                   // first state acronym: 8
  f[46] = std::string(49, 'N');                  // first state name: 48
  f[44 + 4 + 2 + 2 + 4] = std::string(16, '7');  // first cell of A: 15
  f.back() = std::string(40000, 'd');            // description: 31999
  std::string bad;
  for (const auto& x : f) bad += x + "~";

  Model back;
  RecordingPrompter p;
  ASSERT_EQ(readModelBytes(bad, "o.ovi", back, p), 1);
  EXPECT_EQ(back.acronym, std::string(8, 'A'));
  EXPECT_EQ(back.name, std::string(47, 'B'));
  EXPECT_EQ(back.states.acronyms[0], std::string(8, 'S'));
  EXPECT_EQ(back.states.names[0], std::string(48, 'N'));
  EXPECT_EQ(back.matrix(MatrixId::A)->cell(0, 0), std::string(15, '7'));
  EXPECT_EQ(back.description.size(), 31999u);
  ASSERT_EQ(p.messages().size(), 1u);
  EXPECT_EQ(p.messages()[0].caption, "Warning!");
  EXPECT_EQ(p.messages()[0].text.substr(0, 21), "6 field(s) of o.ovi w");
}

TEST(ModelFile, OutOfRangeSizesAreRefusedAndTheModelKept) {
  Fields f;
  f.add({"321", "BAD", "Bad", "-3", "1", "1", "1", "4", "0", "0", "1E-6", "0", "0", "0"});
  Model model = makeModel(ModelShape{});
  fillDistinct(model);
  const Model before = model;
  RecordingPrompter prompter;
  EXPECT_EQ(readModelBytes(f.text(), "bad.ovi", model, prompter), 0);
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
  ModelShape s;
  s.n = 1;
  s.m = 1;
  s.l = 1;
  s.maxLead = 4;
  s.flags.forwardVars = opt::kForwardYes;
  Model model = makeModel(s);
  fillDistinct(model);
  std::string text;
  RecordingPrompter prompter;
  ASSERT_TRUE(serializeModel(model, "lead.ovi", text, prompter));
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, "Maximum Lead must be 1, 2 or 3.");
  EXPECT_EQ(prompter.messages()[0].caption, "Error");
  EXPECT_EQ(text.find("D10.0"), std::string::npos);  // no lead matrix written
  EXPECT_NE(text.find("~C0.0~Z0.0~"), std::string::npos);

  Model back;
  RecordingPrompter p;
  ASSERT_EQ(readModelBytes(text, "lead.ovi", back, p), 1);
  ASSERT_EQ(p.messages().size(), 1u);
  EXPECT_EQ(p.messages()[0].text, "Maximum Lead must be 1, 2 or 3.");
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
  ASSERT_GE(f.size(), 14u);
  EXPECT_EQ(f[0], "321");
  for (int i = 1; i <= 13; ++i) EXPECT_EQ(f[static_cast<std::size_t>(i)], "") << i;
  EXPECT_EQ(f[14], "0");  // criterion form: no option chosen
  Model back;
  ASSERT_EQ(readModelFile(path, back, prompter), 1);
  EXPECT_EQ(back.dims.n.text, "");
  EXPECT_EQ(back.dims.nt.value, 1);
}

TEST(ModelFile, SaveRefusesAMissingWAndTheFieldSeparator) {
  TempDir dir;
  const std::string path = dir.file("keep.ovi");
  spit(path, "old content");

  Model noW = makeModel(ModelShape{});
  noW.dropMatrix(MatrixId::W);
  RecordingPrompter prompter;
  EXPECT_EQ(writeModelFile(path, noW, prompter), 0);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].text, "lpszMatW is NULL");
  EXPECT_EQ(prompter.messages()[0].caption, "Error!");
  EXPECT_EQ(slurp(path), "old content");

  Model tilde = makeModel(ModelShape{});
  tilde.matrix(MatrixId::B)->setCell(0, 0, "1~2");
  RecordingPrompter p2;
  EXPECT_EQ(writeModelFile(path, tilde, p2), 0);
  ASSERT_EQ(p2.messages().size(), 1u);
  EXPECT_EQ(p2.messages()[0].caption, "Error!");
  EXPECT_NE(p2.messages()[0].text.find("B holds the character '~'"), std::string::npos);
  EXPECT_EQ(slurp(path), "old content");
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
  EXPECT_EQ(*back.matrix(MatrixId::W), *model.matrix(MatrixId::W));
  EXPECT_EQ(*back.matrix(MatrixId::G), *model.matrix(MatrixId::G));  // later fields in step
  EXPECT_EQ(back.description, model.description);
}

TEST(ModelFile, SavingOverALongerFileKeepsItsTailBehindTheDescription) {
  ModelShape big;
  big.n = 6;
  Model longer = makeModel(big);
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
  const std::string newBytes = slurp(path);

  std::string fresh;
  ASSERT_TRUE(serializeModel(shorter, "m.ovi", fresh, prompter));
  ASSERT_LT(fresh.size(), oldBytes.size());
  EXPECT_EQ(newBytes.size(), oldBytes.size());
  EXPECT_EQ(newBytes.substr(0, fresh.size()), fresh);
  EXPECT_EQ(newBytes.substr(fresh.size()), oldBytes.substr(fresh.size()));

  Model back;
  ASSERT_EQ(readModelFile(path, back, prompter), 1);
  expectSameModel(shorter, back);
  EXPECT_TRUE(prompter.messages().empty());
}

TEST(ModelFile, AFailedWriteLeavesTheOldFileWholeAndNoTemporaryFile) {
  TempDir dir;
  const std::string path = dir.file("safe.ovi");
  const std::string old = "321~the previous model~";
  spit(path, old);
  ModelShape s;
  s.n = 20;
  const Model model = makeModel(s);

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
  EXPECT_EQ(slurp(path), old);
  int files = 0;
  for ([[maybe_unused]] const auto& e : std::filesystem::directory_iterator(dir.path())) ++files;
  EXPECT_EQ(files, 1);
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
  ModelShape s;
  s.n = 100;
  Model model = makeModel(s);
  for (int r = 0; r < 100; ++r)
    for (int c = 0; c < 100; ++c) model.matrix(MatrixId::A)->setCell(r, c, "0.123456789");
  TempDir dir;
  RecordingPrompter prompter;
  ASSERT_EQ(writeModelFile(dir.file("huge.ovi"), model, prompter), 1);
  ASSERT_EQ(prompter.messages().size(), 1u);
  EXPECT_EQ(prompter.messages()[0].caption, "Warning!");
  EXPECT_NE(prompter.messages()[0].text.find("will not read back whole"), std::string::npos);
}

TEST(ModelFile, FileTitleDropsTheDirectory) {
  EXPECT_EQ(fileTitle("/home/u/models/track1.ovi"), "track1.ovi");
  EXPECT_EQ(fileTitle("track1.ovi"), "track1.ovi");
  EXPECT_EQ(fileTitle(""), "");
}

}  // namespace
}  // namespace ovaro
