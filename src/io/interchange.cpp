#include "io/interchange.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstdio>
#include <optional>
#include <vector>

#include "io/token_reader.h"
#include "model/conversion.h"
#include "model/model_file.h"
#include "model/safe_file.h"

namespace ovaro {

namespace {

constexpr std::string_view kSystemBlock = "WDCBA";
constexpr std::string_view kEndMark = "END";

// The system matrices that travel together in the "WDCBA" block, left to right.
std::vector<MatrixId> systemParts(const Model& model) {
  std::vector<MatrixId> parts;
  for (MatrixId id : {MatrixId::A, MatrixId::B, MatrixId::C, MatrixId::A0, MatrixId::A1,
                      MatrixId::B1, MatrixId::C1})
    if (calledFor(model, id) && model.holds(id)) parts.push_back(id);
  return parts;
}

bool isSystemPart(MatrixId id) {
  switch (id) {
    case MatrixId::A:
    case MatrixId::B:
    case MatrixId::C:
    case MatrixId::A0:
    case MatrixId::A1:
    case MatrixId::B1:
    case MatrixId::C1:
      return true;
    default:
      return false;
  }
}

int systemWidth(const Model& model) {
  int width = 0;
  for (MatrixId id : systemParts(model)) width += model.matrix(id)->cols();
  return width;
}

template <typename... Args>
std::string format(const char* fmt, Args... args) {
  std::array<char, 256> buf{};
  const int n = std::snprintf(buf.data(), buf.size(), fmt, args...);
  return std::string(buf.data(), static_cast<std::size_t>(std::clamp(n, 0, 255)));
}

// The header words and settings of one file, whichever format it is.
struct Header {
  int n = 0, m = 0, l = 0, np = 0, ny = 0, nt = 0, nmc = 0;
  int initialPeriod = 0, maxLead = 0, iterlim = 0;
  std::string tolerance = "0";
  SpecFlags flags;
  RandomSwitches sw;
  int itv = 0;   // QLP: 1 when C varies over time
  int ncol = 0;  // QLP: the width of the system block
};

Header headerOf(const Model& model) {
  const Dimensions& d = model.dims;
  Header h;
  h.n = d.n.value;
  h.m = d.m.value;
  h.l = d.l.value;
  h.np = d.np.value;
  h.ny = d.ny.value;
  h.nt = d.nt.value;
  h.nmc = d.nmc.value;
  h.initialPeriod = d.initialPeriod.value;
  h.maxLead = d.maxLead.value;
  h.iterlim = d.iterlim.value;
  h.tolerance = cellToken(d.toleranceText);
  h.flags = model.flags;
  h.sw = model.randomSwitches;
  h.ncol = systemWidth(model);
  return h;
}

// The QLP header's coded words: 1/2 for the first/second choice of a form, 0 for none.
int formCode(int id, int first, int second) {
  return id == first ? 1 : id == second ? 2 : 0;
}

std::string switchesText(const RandomSwitches& s) {
  return format(" %d %d %d %d %d %d", s.uncertainParameters, s.certainButDifferent,
                s.uncertainStates, s.systemEquations, s.measurementEquations,
                s.timeVaryingParameters);
}

std::string flagsText(const SpecFlags& f) {
  return format("%d %d %d %d %d %d %d %d %d %d %d %d %d", f.stochTerms, f.criterionForm,
                f.systemForm, f.forwardVars, f.policyToParam, f.zForm, f.wForm, f.lambdaForm,
                f.xdesForm, f.udesForm, f.randomSource, f.option450, f.option452);
}

std::string headerText(InputFormat format_, const Header& h) {
  const SpecFlags& f = h.flags;
  if (format_ == InputFormat::Veld)
    return format("%d %d %d %d %d %d %d\n", h.n, h.m, h.l, h.np, h.ny, h.nt, h.nmc) +
           format("%d %d %d %d %d %d\n", f.stochTerms, f.criterionForm, f.systemForm, f.forwardVars,
                  f.policyToParam, f.zForm) +
           format("%d %d %d %d %d %d\n", f.wForm, f.lambdaForm, f.xdesForm, f.udesForm,
                  f.randomSource, h.maxLead);
  const int ie = formCode(f.criterionForm, opt::kQuadraticTracking, opt::kQuadraticForm);
  const int ireg = formCode(f.systemForm, opt::kRegular, opt::kPindyck);
  return format("%d %d %d %d %d %d\n", h.n, h.m, h.l, h.nt, h.itv, ireg) +
         format("%d %d %d %d %d %d\n", ie, h.np, h.ncol, h.maxLead, h.iterlim, h.nmc);
}

std::string settingsText(InputFormat format_, const Header& h) {
  if (format_ == InputFormat::Veld)
    return format("%d %d ", h.initialPeriod, h.iterlim) + h.tolerance +
           format(" %d %d", h.flags.option450, h.flags.option452) + switchesText(h.sw) + "\n";
  return flagsText(h.flags) + "\n" + format("%d %d ", h.initialPeriod, h.ny) + h.tolerance +
         switchesText(h.sw) + "\n";
}

void appendBlock(std::string& out, std::string_view name,
                 const std::vector<const TextMatrix*>& parts) {
  if (parts.empty()) return;
  int cols = 0;
  for (const TextMatrix* p : parts) cols += p->cols();
  const int rows = parts.front()->rows();
  out += std::string(name) + format(" %d %d\n", rows, cols);
  for (int i = 0; i < rows; ++i) {
    std::string line;
    for (const TextMatrix* p : parts)
      for (int j = 0; j < p->cols(); ++j) {
        if (!line.empty()) line += ' ';
        line += cellToken(p->cell(i, j));
      }
    out += line + "\n";
  }
}

// What the import has read so far, and where it failed.
class Importer {
 public:
  Importer(InputFormat format, std::string_view bytes, DebugFile* debug, Prompter& prompter)
      : format_(format), in_(bytes), debug_(debug), prompter_(prompter) {}

  int run(Model& model) {
    if (debug_ != nullptr) echo("Debug File\n");
    Header h;
    const bool veld = format_ == InputFormat::Veld;
    if (veld ? !readVeldHeader(h) : !readQlpHeader(h)) return 0;
    Model fresh;
    clearModel(fresh);
    in_.skipLine();
    fresh.acronym = std::string(in_.line().substr(0, kModelAcronymChars));
    fresh.name = std::string(in_.line().substr(0, kModelNameChars));
    if (!readSettings(h)) return 0;
    if (!build(h, fresh)) return 0;
    if (!readBlocks(fresh)) return 0;
    model = std::move(fresh);
    if (veld) prompter_.inform("Importation Completed", "Import VELD");
    return 1;
  }

 private:
  const char* caption() const {
    return format_ == InputFormat::Veld ? "Import VELD" : "Import QLP";
  }

  bool fail(const std::string& what) {
    prompter_.inform(std::string(formatName(format_)) + " file, line " +
                         std::to_string(in_.lineNumber()) + ": " + what,
                     caption(), Icon::Exclamation);
    return false;
  }

  void echo(std::string_view text) {
    if (debug_ != nullptr) debug_->write(text);
  }

  bool readInt(const char* field, int& v) {
    const std::optional<std::string_view> t = in_.token();
    if (!t) return fail(std::string("the file ends before the field ") + field + ".");
    const auto [end, ec] = std::from_chars(t->data(), t->data() + t->size(), v);
    if (ec != std::errc() || end != t->data() + t->size())
      return fail(std::string("the field ") + field + " should be a whole number but is \"" +
                  std::string(t->substr(0, 40)) + "\".");
    return true;
  }

  bool readInts(std::initializer_list<std::pair<const char*, int*>> fields) {
    for (auto [name, v] : fields)
      if (!readInt(name, *v)) return false;
    return true;
  }

  bool readVeldHeader(Header& h) {
    if (!readInts({{"n", &h.n},
                   {"m", &h.m},
                   {"ns", &h.l},
                   {"np", &h.np},
                   {"ny", &h.ny},
                   {"nt", &h.nt},
                   {"nmc", &h.nmc}}))
      return false;
    echo("n   m   ns  np  ny  nt  nmc \n");
    echo(format("%3d %3d %3d %3d %3d %3d %3d \n\n", h.n, h.m, h.l, h.np, h.ny, h.nt, h.nmc));
    SpecFlags& f = h.flags;
    if (!readInts({{"L1", &f.stochTerms},
                   {"L2", &f.criterionForm},
                   {"L3", &f.systemForm},
                   {"L4", &f.forwardVars},
                   {"L5", &f.policyToParam},
                   {"L6", &f.zForm},
                   {"L7", &f.wForm},
                   {"L8", &f.lambdaForm},
                   {"L9", &f.xdesForm},
                   {"L10", &f.udesForm},
                   {"L11", &f.randomSource},
                   {"L12", &h.maxLead}}))
      return false;
    echo("L1  L2  L3  L4  L5  L6 \n");
    echo(format("%3d %3d %3d %3d %3d %3d \n\n", f.stochTerms, f.criterionForm, f.systemForm,
                f.forwardVars, f.policyToParam, f.zForm));
    echo("L7  L8  L9  L10 L11 L12 \n");
    echo(format("%3d %3d %3d %3d %3d %3d \n\n", f.wForm, f.lambdaForm, f.xdesForm, f.udesForm,
                f.randomSource, h.maxLead));
    return true;
  }

  bool readQlpHeader(Header& h) {
    int ireg = 0, ie = 0;
    if (!readInts({{"n", &h.n},
                   {"m", &h.m},
                   {"l", &h.l},
                   {"nt", &h.nt},
                   {"itv", &h.itv},
                   {"ireg", &ireg}}))
      return false;
    echo("n   m   l  nt   itv ireg \n");
    echo(format("%3d %3d %3d %3d %3d %3d \n", h.n, h.m, h.l, h.nt, h.itv, ireg));
    if (h.n > kQlpLargeStateCount &&
        prompter_.ask("Number of state variables > 2000.  Continue ?", "Warning", Buttons::YesNo,
                      Answer::No, Icon::Exclamation) != Answer::Yes)
      return false;
    if (h.itv != 0) {
      prompter_.inform("This version cannot handle time varying C.", caption(), Icon::Exclamation);
      return false;
    }
    if (!readInts({{"ie", &ie},
                   {"npc", &h.np},
                   {"ncol", &h.ncol},
                   {"nfor", &h.maxLead},
                   {"iterlim", &h.iterlim},
                   {"npgc", &h.nmc}}))
      return false;
    echo("ie  npc ncol nfor iterlim npgc \n");
    echo(format("%3d %3d %4d %4d %8d %3d \n", ie, h.np, h.ncol, h.maxLead, h.iterlim, h.nmc));
    return true;
  }

  bool readSettings(Header& h) {
    SpecFlags& f = h.flags;
    RandomSwitches& s = h.sw;
    if (format_ == InputFormat::Qlp && !readInts({{"stochTerms", &f.stochTerms},
                                                  {"criterionForm", &f.criterionForm},
                                                  {"systemForm", &f.systemForm},
                                                  {"forwardVars", &f.forwardVars},
                                                  {"policyToParam", &f.policyToParam},
                                                  {"zForm", &f.zForm},
                                                  {"wForm", &f.wForm},
                                                  {"lambdaForm", &f.lambdaForm},
                                                  {"xdesForm", &f.xdesForm},
                                                  {"udesForm", &f.udesForm},
                                                  {"randomSource", &f.randomSource},
                                                  {"option450", &f.option450},
                                                  {"option452", &f.option452},
                                                  {"initialPeriod", &h.initialPeriod},
                                                  {"ny", &h.ny}}))
      return false;
    if (format_ == InputFormat::Veld &&
        !readInts({{"initialPeriod", &h.initialPeriod}, {"iterlim", &h.iterlim}}))
      return false;
    const std::optional<std::string_view> tol = in_.token();
    if (!tol) return fail("the file ends before the field tolerance.");
    h.tolerance = std::string(*tol);
    if (format_ == InputFormat::Veld &&
        !readInts({{"option450", &f.option450}, {"option452", &f.option452}}))
      return false;
    return readInts({{"uncertainParameters", &s.uncertainParameters},
                     {"certainButDifferent", &s.certainButDifferent},
                     {"uncertainStates", &s.uncertainStates},
                     {"systemEquations", &s.systemEquations},
                     {"measurementEquations", &s.measurementEquations},
                     {"timeVaryingParameters", &s.timeVaryingParameters}});
  }

  bool build(const Header& h, Model& model) {
    Dimensions& d = model.dims;
    d.n.set(h.n);
    d.m.set(h.m);
    d.l.set(h.l);
    d.np.set(h.np);
    d.ny.set(h.ny);
    d.nmc.set(h.nmc);
    d.maxLead.set(h.maxLead);
    d.iterlim.set(h.iterlim);
    d.setToleranceText(h.tolerance);
    const long long terminal = static_cast<long long>(h.initialPeriod) + h.nt - 1;
    if (terminal < INT_MIN || terminal > INT_MAX)
      return fail("the initial period and nt give a terminal period out of range.");
    d.initialPeriod.set(h.initialPeriod);
    d.terminalPeriod.set(static_cast<int>(terminal));
    d.recomputePeriods();
    model.flags = h.flags;
    model.randomSwitches = h.sw;
    if (const std::string problems = checkSizes(model); !problems.empty())
      return fail("sizes that Ovaro does not accept: " + problems + ".");
    allocateModelArrays(model);
    if (format_ == InputFormat::Qlp && h.ncol != systemWidth(model))
      return fail("ncol is " + std::to_string(h.ncol) + " but the system matrices of this form " +
                  "are " + std::to_string(systemWidth(model)) + " columns wide.");
    return true;
  }

  bool readCells(std::string_view name, int rows, std::vector<TextMatrix*> parts) {
    for (int i = 0; i < rows; ++i)
      for (TextMatrix* p : parts)
        for (int j = 0; j < p->cols(); ++j) {
          const std::optional<std::string_view> t = in_.token();
          if (!t)
            return fail("the file ends inside matrix " + std::string(name) + " (row " +
                        std::to_string(i + 1) + ").");
          if (t->size() > static_cast<std::size_t>(kCellChars))
            return fail("an element of " + std::string(name) + " (row " + std::to_string(i + 1) +
                        ") is longer than 15 characters: \"" + std::string(t->substr(0, 40)) +
                        "\".");
          p->setCell(i, j, *t);
        }
    return true;
  }

  bool readBlocks(Model& model) {
    std::vector<bool> seen(kMatrixCount, false);
    for (;;) {
      const std::optional<std::string_view> name = in_.token();
      if (!name) return fail("the file ends before its closing END.");
      if (*name == kEndMark) return true;
      const std::string label(name->substr(0, 40));
      int rows = 0, cols = 0;
      if (!readInt("rows", rows) || !readInt("columns", cols)) return false;
      std::vector<TextMatrix*> parts;
      int wantRows = model.dims.n.value, wantCols = 0;
      if (*name == kSystemBlock) {
        for (MatrixId id : systemParts(model)) parts.push_back(model.matrix(id));
        wantCols = systemWidth(model);
      } else {
        const std::optional<MatrixId> id = matrixByName(*name);
        if (!id || isSystemPart(*id) || !model.holds(*id))
          return fail("\"" + label + "\" is not a matrix that a model of these forms holds.");
        parts.push_back(model.matrix(*id));
        wantRows = parts.front()->rows();
        wantCols = parts.front()->cols();
      }
      if (parts.empty())
        return fail("this model's forms have no system matrices, so there is no " + label + ".");
      // The system block stands in the slot of its first matrix.
      const auto slot = static_cast<std::size_t>(*name == kSystemBlock ? systemParts(model).front()
                                                                       : *matrixByName(*name));
      if (seen[slot]) return fail("matrix " + label + " is given twice.");
      seen[slot] = true;
      if (rows != wantRows || cols != wantCols)
        return fail("matrix " + label + " is given as " + std::to_string(rows) + " x " +
                    std::to_string(cols) + " but this model's is " + std::to_string(wantRows) +
                    " x " + std::to_string(wantCols) + ".");
      if (!readCells(label, rows, parts)) return false;
      echoBlock(label, parts, rows, cols);
    }
  }

  void echoBlock(const std::string& name, const std::vector<TextMatrix*>& parts, int rows,
                 int cols) {
    if (debug_ == nullptr) return;
    Mat a = mat2(1, rows, 1, cols);
    int c0 = 0;
    for (const TextMatrix* p : parts) {
      for (int i = 0; i < rows; ++i)
        for (int j = 0; j < p->cols(); ++j) a(i + 1, c0 + j + 1) = toDouble(p->cell(i, j));
      c0 += p->cols();
    }
    const bool xdest = format_ == InputFormat::Veld && name == "XDEST";
    debug_->dumpMatrix(xdest ? "XDEST - original" : name, 1, rows, 1, cols, a);
  }

  InputFormat format_;
  TokenReader in_;
  DebugFile* debug_;
  Prompter& prompter_;
};

}  // namespace

std::string_view formatName(InputFormat format) {
  return format == InputFormat::Veld ? "VELD" : "QLP";
}

std::string cellToken(std::string_view cell) {
  const bool single = !cell.empty() && std::none_of(cell.begin(), cell.end(),
                                                    [](char c) { return TokenReader::isBlank(c); });
  if (single) return std::string(cell);
  std::array<char, 32> buf{};
  const auto res = std::to_chars(buf.data(), buf.data() + buf.size(), toDouble(cell));
  return std::string(buf.data(), res.ptr);
}

namespace {
// A label on a line of its own: line breaks inside it become blanks.
std::string oneLine(std::string text) {
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::replace(text.begin(), text.end(), '\r', ' ');
  return text;
}
}  // namespace

std::string serializeInput(InputFormat format_, const Model& model) {
  const Header h = headerOf(model);
  std::string out = headerText(format_, h);
  out += oneLine(model.acronym) + "\n" + oneLine(model.name) + "\n" + settingsText(format_, h);
  std::vector<const TextMatrix*> system;
  for (MatrixId id : systemParts(model)) system.push_back(model.matrix(id));
  appendBlock(out, kSystemBlock, system);
  for (int k = 0; k < kMatrixCount; ++k) {
    const auto id = static_cast<MatrixId>(k);
    if (isSystemPart(id) || !calledFor(model, id) || !model.holds(id)) continue;
    appendBlock(out, matrixSpec(id).name, {model.matrix(id)});
  }
  out += std::string(kEndMark) + "\n";
  return out;
}

int writeInputFile(InputFormat format, const std::string& path, const Model& model) {
  return replaceFileContents(path, serializeInput(format, model), false) ? 1 : 0;
}

int readInputBytes(InputFormat format, std::string_view bytes, Model& model, DebugFile* debug,
                   Prompter& prompter) {
  return Importer(format, bytes, debug, prompter).run(model);
}

int readInputFile(InputFormat format, const std::string& path, Model& model, DebugFile* debug,
                  Prompter& prompter) {
  std::string bytes;
  if (!readWholeFile(path, bytes)) return 0;
  return readInputBytes(format, bytes, model, debug, prompter);
}

}  // namespace ovaro
