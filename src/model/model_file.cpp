#include "model/model_file.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <utility>
#include <vector>

#include "model/conversion.h"
#include "model/safe_file.h"

namespace ovaro {

namespace {

// Slots of the fields that are not cells, labels or names. Dimension and flag texts have no slot
// of their own; they are held to the width of a cell.
constexpr std::size_t kShortFieldChars = kCellChars;
constexpr std::size_t kDescriptionChars = kDescriptionBytes - 1;

constexpr const char* kLeadError = "Maximum Lead must be 1, 2 or 3.";

// Version in which each versioned field or group first appears.
constexpr int kV311DisplayWords = 311;
constexpr int kV312Description = 312;
constexpr int kV313ReservedWord = 313;
constexpr int kV314RandomSwitches = 314;
constexpr int kV315ZtPeriodColumns = 315;
// ZETAS and ETAS lost their extra period column after version 316: a 316 file still holds nt.
constexpr int kV317NoiseColumns = 317;
constexpr int kV317FeedbackRule = 317;
constexpr int kV317Current = 317;  // older files draw the upgrade warning
constexpr int kV318StochasticOrder = 318;
constexpr int kV319PolicyToParam = 319;
constexpr int kV320CertainButDifferent = 320;
constexpr int kV321Tolerance = 321;

// The single cursor of the reader. A field is every byte from the cursor up to the next '~' or
// NUL, or to the end of the text; the cursor then moves one byte past the separator. Once the text
// is exhausted every further field is empty. A field longer than its slot is shortened and
// counted, never written past the slot.
class FieldCursor {
 public:
  explicit FieldCursor(std::string_view text) : text_(text) {}

  std::string next(std::size_t slotChars) {
    const std::size_t start = std::min(pos_, text_.size());
    std::size_t end = start;
    while (end < text_.size() && text_[end] != '~' && text_[end] != '\0') ++end;
    pos_ = std::min(end + 1, text_.size());
    std::string_view field = text_.substr(start, end - start);
    if (field.size() > slotChars) {
      ++shortened_;
      field = field.substr(0, slotChars);
    }
    return std::string(field);
  }

  int shortened() const { return shortened_; }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  int shortened_ = 0;
};

// Reads a matrix stored in the file as fileRows x fileCols fields, row by row; cells that the
// Model's matrix does not have (older files held some per-period matrices with one column more)
// are read and dropped.
void readMatrix(FieldCursor& in, TextMatrix& t, int fileCols) {
  for (int r = 0; r < t.rows(); ++r)
    for (int c = 0; c < fileCols; ++c) {
      const std::string field = in.next(kCellChars);
      if (c < t.cols()) t.setCell(r, c, field);
    }
}

void readMatrix(FieldCursor& in, Model& model, MatrixId id) {
  TextMatrix* t = model.matrix(id);
  readMatrix(in, *t, t->cols());
}

// Reads a per-period matrix whose older files held nt columns instead of nt - 1.
void readPeriodMatrix(FieldCursor& in, Model& model, MatrixId id, bool oldLayout) {
  TextMatrix* t = model.matrix(id);
  readMatrix(in, *t, oldLayout ? std::max(model.dims.nt.value, 0) : t->cols());
}

void readLabels(FieldCursor& in, LabelTable& t) {
  for (auto& a : t.acronyms) a = in.next(kAcronymChars);
  for (auto& n : t.names) n = in.next(kNameChars);
}

void readCount(FieldCursor& in, Count& c) {
  c.setText(in.next(kShortFieldChars));
}
int readInt(FieldCursor& in) {
  return toInt(in.next(kShortFieldChars));
}

// A whole number as a model file writes its version and sizes: digits with an optional sign,
// blanks around them allowed. Prose, a decimal point or an empty field is not one.
bool isWholeNumber(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return false;
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  if (text.front() == '+' || text.front() == '-') text.remove_prefix(1);
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::string fileTitle(std::string_view path) {
  const std::size_t slash = path.find_last_of('/');
  return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

int readModelBytes(std::string_view bytes, std::string_view fileName, Model& model,
                   Prompter& prompter) {
  FieldCursor in(bytes);
  // Sizes, flags and switches that the file's version does not hold keep their current values.
  Model next;
  next.dims = model.dims;
  next.flags = model.flags;
  next.randomSwitches = model.randomSwitches;
  next.display = model.display;

  // 1. Version. A file that does not open with a whole number is not a model file, whatever
  // its name: it is refused before anything is read from it, so the model and its file stay.
  const std::string versionText = in.next(kShortFieldChars);
  if (!isWholeNumber(versionText)) return 0;
  next.fileVersion = toInt(versionText);
  const int v = next.fileVersion;

  // 2, 3. Acronym and name.
  next.acronym = in.next(kModelAcronymChars);
  next.name = in.next(kModelNameChars);

  // 4. Dimensions.
  Dimensions& d = next.dims;
  readCount(in, d.n);
  readCount(in, d.m);
  readCount(in, d.l);
  readCount(in, d.initialPeriod);
  readCount(in, d.terminalPeriod);
  readCount(in, d.maxLead);
  readCount(in, d.iterlim);
  if (v >= kV321Tolerance) d.setToleranceText(in.next(kShortFieldChars));
  readCount(in, d.np);
  readCount(in, d.nmc);
  readCount(in, d.ny);
  // Every version writes its sizes as whole numbers, or leaves them empty for a cleared model;
  // anything else means the fields are prose.
  for (const Count* c : {&d.n, &d.m, &d.l, &d.initialPeriod, &d.terminalPeriod, &d.maxLead,
                         &d.iterlim, &d.np, &d.nmc, &d.ny})
    if (!c->text.empty() && !isWholeNumber(c->text)) return 0;
  if (v < kV317Current)
    prompter.inform("Please upgrade: Do File:Save, then exit and restart Ovaro.",
                    "Warning: Input File Version Out of Date", Icon::Exclamation);
  d.recomputePeriods();

  // 5. Forms.
  SpecFlags& f = next.flags;
  f.criterionForm = readInt(in);
  f.systemForm = readInt(in);
  f.forwardVars = readInt(in);
  f.policyToParam = v >= kV319PolicyToParam ? readInt(in) : opt::kPolicyNo;
  f.zForm = readInt(in);
  f.wForm = readInt(in);
  f.lambdaForm = readInt(in);
  f.xdesForm = readInt(in);
  f.udesForm = readInt(in);

  // 6. Stochastic group: the last of the four words that is 1 decides.
  const int words[4] = {readInt(in), readInt(in), readInt(in), readInt(in)};
  const int kinds[4] = {opt::kDeterministic, opt::kAdditiveNoise, opt::kParameterUncertainty,
                        opt::kMeasurementError};
  for (int i = 0; i < 4; ++i)
    if (words[i] == 1) f.stochTerms = kinds[i];
  f.option450 = readInt(in);
  f.option452 = readInt(in);
  f.randomSource = readInt(in);
  if (v >= kV313ReservedWord) f.reservedWord = in.next(kShortFieldChars);

  // 7. Random-terms switches.
  if (v >= kV314RandomSwitches) {
    RandomSwitches& s = next.randomSwitches;
    s.uncertainParameters = readInt(in);
    if (v >= kV320CertainButDifferent) s.certainButDifferent = readInt(in);
    s.uncertainStates = readInt(in);
    s.systemEquations = readInt(in);
    s.measurementEquations = readInt(in);
    s.timeVaryingParameters = readInt(in);
  }

  // 8. Results-display words.
  if (v >= kV311DisplayWords) {
    ResultsDisplayWords& w = next.display;
    for (int& word : w.words) word = readInt(in);
    const bool columns = w.words[ResultsDisplayWords::kPeriodsAsColumnsWord] == 1;
    const bool rows = w.words[ResultsDisplayWords::kPeriodsAsRowsWord] == 1;
    if (columns != rows) w.orientation = columns ? opt::kPeriodsAsColumns : opt::kPeriodsAsRows;
  }

  // The arrays follow from the sizes and flags just read; refuse sizes no file could hold.
  if (const std::string problems = checkSizes(next); !problems.empty()) {
    prompter.inform("The sizes in " + std::string(fileName) + " are out of range: " + problems +
                        ". The file may be damaged or may not be a model file.",
                    "Error", Icon::Stop);
    return 0;
  }
  allocateModelArrays(next);

  // 9. Labels.
  readLabels(in, next.states);
  readLabels(in, next.controls);
  readLabels(in, next.exogenous);
  readLabels(in, next.periods);
  readLabels(in, next.parameters);
  readLabels(in, next.observations);

  // 10. System equations.
  const bool forward = f.forwardVars == opt::kForwardYes;
  const bool leadOk = leadIsValid(next);
  if (forward && !leadOk) prompter.inform(kLeadError, "Error", Icon::Stop);
  const int leads = leadOk ? d.maxLead.value : 0;
  if (f.systemForm == opt::kRegular) {
    for (MatrixId id : {MatrixId::A, MatrixId::B, MatrixId::C}) readMatrix(in, next, id);
    const MatrixId lead[3] = {MatrixId::D1, MatrixId::D2, MatrixId::D3};
    for (int k = 0; k < leads; ++k) readMatrix(in, next, lead[k]);
  } else if (f.systemForm == opt::kPindyck) {
    for (MatrixId id : {MatrixId::A0, MatrixId::A1, MatrixId::B1, MatrixId::C1})
      readMatrix(in, next, id);
    const MatrixId lead[3] = {MatrixId::DHAT1, MatrixId::DHAT2, MatrixId::DHAT3};
    for (int k = 0; k < leads; ++k) readMatrix(in, next, lead[k]);
  }

  // 11, 12. Exogenous variables and the initial state.
  if (next.holds(MatrixId::Z)) readMatrix(in, next, MatrixId::Z);
  if (next.holds(MatrixId::ZT)) readPeriodMatrix(in, next, MatrixId::ZT, v < kV315ZtPeriodColumns);
  readMatrix(in, next, MatrixId::X0);

  // 13, 14. Criterion weights and desired paths, each as its form calls for it.
  for (MatrixId id : {MatrixId::W, MatrixId::WN, MatrixId::WT, MatrixId::LAMBDA, MatrixId::LAMBDAT,
                      MatrixId::XDES, MatrixId::XDEST, MatrixId::UDES, MatrixId::UDEST})
    if (next.holds(id)) readMatrix(in, next, id);

  // 15. Stochastic matrices.
  const int st = f.stochTerms;
  if (v >= kV318StochasticOrder) {
    if (hasNoiseTerms(st)) {
      readMatrix(in, next, MatrixId::Q);
      readMatrix(in, next, MatrixId::XSIS);
    }
    if (hasUncertainParameters(st)) {
      readMatrix(in, next, MatrixId::TH0);
      if (v >= kV320CertainButDifferent) readMatrix(in, next, MatrixId::TH0DIFF);
      readMatrix(in, next, MatrixId::SITT0);
      readMatrix(in, next, MatrixId::ITHN);
    }
  } else {
    if (hasUncertainParameters(st)) readMatrix(in, next, MatrixId::TH0);
    if (hasUncertainParameters(st)) readMatrix(in, next, MatrixId::SITT0);
    if (hasNoiseTerms(st)) readMatrix(in, next, MatrixId::Q);
    if (hasUncertainParameters(st)) readMatrix(in, next, MatrixId::ITHN);
    if (hasNoiseTerms(st)) readMatrix(in, next, MatrixId::XSIS);
  }

  // 16. Measurement-error matrices.
  if (st == opt::kMeasurementError) {
    for (MatrixId id :
         {MatrixId::D, MatrixId::H, MatrixId::SIXX0, MatrixId::SITX0, MatrixId::R, MatrixId::GAM})
      readMatrix(in, next, id);
    readPeriodMatrix(in, next, MatrixId::ZETAS, v < kV317NoiseColumns);
    readPeriodMatrix(in, next, MatrixId::ETAS, v < kV317NoiseColumns);
    readMatrix(in, next, MatrixId::TH0DEV);
    readMatrix(in, next, MatrixId::X0DEV);
  }

  // 17, 18. Handcrafted feedback rule, policy-to-parameter effect.
  if (v >= kV317FeedbackRule) {
    readMatrix(in, next, MatrixId::G);
    readMatrix(in, next, MatrixId::g);
  }
  if (v >= kV319PolicyToParam && f.policyToParam == opt::kPolicyYes)
    readMatrix(in, next, MatrixId::N);

  // 19. Description; whatever follows it is ignored.
  if (v >= kV312Description) next.description = in.next(kDescriptionChars);

  if (in.shortened() > 0)
    prompter.inform(std::to_string(in.shortened()) + " field(s) of " + std::string(fileName) +
                        " were longer than the values, labels or description they fill and were "
                        "shortened. Check the model before saving it.",
                    "Warning!", Icon::Exclamation);

  model = std::move(next);
  return 1;
}

int readModelFile(const std::string& path, Model& model, Prompter& prompter) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return 0;
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0 || S_ISDIR(st.st_mode)) return 0;
  const auto length = static_cast<std::uint64_t>(st.st_size);
  if (length >= kLargeModelFileBytes)
    prompter.inform("Warning! Input File Very Large.", "Input File Longer Than 128000 Bytes",
                    Icon::Exclamation);
  const auto count = static_cast<std::size_t>(length % kReadCountModulus);
  std::string bytes(count, '\0');
  file.read(bytes.data(), static_cast<std::streamsize>(count));
  if (file.bad()) return 0;
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return readModelBytes(bytes, fileTitle(path), model, prompter);
}

namespace {

// Collects the fields of a model file, noting any field that holds the separator.
class FieldWriter {
 public:
  void field(std::string_view text, std::string_view what) {
    if (text.find('~') != std::string_view::npos && badField_.empty()) badField_ = what;
    out_.append(text);
    out_.push_back('~');
  }
  void number(int value, std::string_view what) { field(std::to_string(value), what); }

  const std::string& badField() const { return badField_; }
  std::string& text() { return out_; }

 private:
  std::string out_;
  std::string badField_;
};

void writeLabels(FieldWriter& w, const LabelTable& t, std::string_view what) {
  for (const auto& a : t.acronyms) w.field(a, what);
  for (const auto& n : t.names) w.field(n, what);
}

}  // namespace

bool serializeModel(const Model& model, std::string_view fileName, std::string& out,
                    Prompter& prompter) {
  const SpecFlags& f = model.flags;
  const Dimensions& d = model.dims;
  if ((f.wForm == opt::kWConstant || f.wForm == opt::kWTerminalDifferent) &&
      !model.holds(MatrixId::W)) {
    prompter.inform("lpszMatW is NULL", "Error!", Icon::Stop);
    return false;
  }

  FieldWriter w;
  w.number(kModelFileVersion, "the version");
  w.field(model.acronym, "the model acronym");
  w.field(model.name, "the model name");

  for (const Count* c :
       {&d.n, &d.m, &d.l, &d.initialPeriod, &d.terminalPeriod, &d.maxLead, &d.iterlim})
    w.field(c->text, "a size");
  w.field(d.toleranceText, "the tolerance");
  for (const Count* c : {&d.np, &d.nmc, &d.ny}) w.field(c->text, "a size");

  for (int v : {f.criterionForm, f.systemForm, f.forwardVars, f.policyToParam, f.zForm, f.wForm,
                f.lambdaForm, f.xdesForm, f.udesForm})
    w.number(v, "a form");

  for (int kind : {opt::kDeterministic, opt::kAdditiveNoise, opt::kParameterUncertainty,
                   opt::kMeasurementError})
    w.number(f.stochTerms == kind ? 1 : 0, "the stochastic terms");
  w.number(f.option450, "an option");
  w.number(f.option452, "an option");
  w.number(f.randomSource, "the source of random terms");
  w.field(f.reservedWord, "the reserved word");

  const RandomSwitches& s = model.randomSwitches;
  for (int v : {s.uncertainParameters, s.certainButDifferent, s.uncertainStates, s.systemEquations,
                s.measurementEquations, s.timeVaryingParameters})
    w.number(v, "a random-terms switch");
  for (int v : model.display.words) w.number(v, "a results-display word");

  writeLabels(w, model.states, "a state label");
  writeLabels(w, model.controls, "a control label");
  writeLabels(w, model.exogenous, "an exogenous-variable label");
  writeLabels(w, model.periods, "a period acronym");
  writeLabels(w, model.parameters, "a parameter label");
  writeLabels(w, model.observations, "an observation label");

  if (f.forwardVars == opt::kForwardYes && !leadIsValid(model))
    prompter.inform(kLeadError, "Error", Icon::Stop);

  // Every matrix in file order, each as the flags call for it, in the shape the sizes give it. A
  // matrix whose form was changed without transforming its data may be missing or of another
  // shape: its cells are written where they exist and "0" elsewhere, so the file stays readable.
  auto put = [&](MatrixId id) {
    const TextMatrix* t = model.matrix(id);
    const int rows = rowsOf(model, id);
    const int cols = colsOf(model, id);
    for (int r = 0; r < rows; ++r)
      for (int c = 0; c < cols; ++c)
        w.field(t != nullptr && r < t->rows() && c < t->cols() ? t->cell(r, c) : "0",
                matrixSpec(id).name);
  };
  // (Under the desired-state form that holds both arrays, both are saved.)
  for (int i = 0; i < kMatrixCount; ++i)
    if (const auto id = static_cast<MatrixId>(i); storedInFile(model, id)) put(id);

  w.field(model.description, "the description");
  if (!w.badField().empty()) {
    prompter.inform(std::string("The model cannot be saved to ") + std::string(fileName) + ": " +
                        w.badField() +
                        " holds the character '~', which separates the fields of a model file. "
                        "Remove it and save again.",
                    "Error!", Icon::Stop);
    return false;
  }
  out = std::move(w.text());
  return true;
}

int writeModelFile(const std::string& path, const Model& model, Prompter& prompter) {
  const std::string title = fileTitle(path);
  std::string content;
  if (!serializeModel(model, title, content, prompter)) return 0;
  if (!replaceFileContents(path, content, /*keepOldTail=*/true)) return 0;

  // With the old tail kept, the file can be longer than what was just written.
  std::error_code ec;
  const std::uint64_t finalSize = std::filesystem::file_size(path, ec);
  if (!ec && finalSize >= kReadCountModulus)
    prompter.inform("The model file " + title + " is now " + std::to_string(finalSize) +
                        " bytes long. A model file is read only as far as its length modulo "
                        "65536 bytes, so this file will not read back whole. Make the model "
                        "smaller (fewer periods or variables, a shorter description) or save it "
                        "under a new name.",
                    "Warning!", Icon::Exclamation);
  return 1;
}

}  // namespace ovaro
