#include "app/cli_transform.h"

#include <array>
#include <charconv>
#include <map>
#include <ostream>
#include <sstream>

#include "app/answering_prompter.h"
#include "app/model_report.h"
#include "model/model_file.h"
#include "model/transform/reconcile.h"
#include "numeric/prompter.h"

namespace ovaro::cli {

namespace {

constexpr int kExitOk = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

// Friendly names of the Transformations menu's commands.
const std::map<std::string, int>& friendlyIds() {
  static const std::map<std::string, int> ids = {
      {"w-terminal-different", 86}, {"w-time-varying", 88},       {"w-constant", 90},
      {"lambda-time-varying", 92},  {"lambda-constant", 94},      {"xdes-time-varying", 96},
      {"udes-time-varying", 98},    {"z-time-varying", 81},       {"to-additive-noise", 100},
      {"to-parameters", 102},       {"noise-to-parameters", 103}, {"to-measurement-error", 104},
      {"to-deterministic", 106},    {"add-state", 108},           {"add-control", 112},
      {"add-exogenous", 114},       {"add-observation", 115},     {"add-parameter", 116},
      {"delete-state", 121},        {"delete-control", 118},      {"delete-exogenous", 119},
      {"delete-observation", 120},  {"delete-parameter", 122},    {"terminal-period", 123}};
  return ids;
}

bool toInt(std::string_view text, int& v) {
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), v);
  return ec == std::errc() && end == text.data() + text.size();
}

// "3,20" -> {3, 20}.
bool toInts(std::string_view text, std::vector<int>& out) {
  out.clear();
  std::stringstream in{std::string(text)};
  std::string item;
  while (std::getline(in, item, ',')) {
    int v = 0;
    if (!toInt(item, v)) return false;
    out.push_back(v);
  }
  return !out.empty();
}

int SpecFlags::*flagByName(std::string_view key) {
  static const std::map<std::string, int SpecFlags::*, std::less<>> flags = {
      {"criterionForm", &SpecFlags::criterionForm},
      {"systemForm", &SpecFlags::systemForm},
      {"forwardVars", &SpecFlags::forwardVars},
      {"policyToParam", &SpecFlags::policyToParam},
      {"zForm", &SpecFlags::zForm},
      {"wForm", &SpecFlags::wForm},
      {"lambdaForm", &SpecFlags::lambdaForm},
      {"xdesForm", &SpecFlags::xdesForm},
      {"udesForm", &SpecFlags::udesForm},
      {"stochTerms", &SpecFlags::stochTerms}};
  const auto it = flags.find(key);
  return it == flags.end() ? nullptr : it->second;
}

// One field of the Size dialog by the name the info command's JSON gives it.
bool setSizeField(Dimensions& d, std::string_view key, const std::string& value) {
  static const std::map<std::string, Count Dimensions::*, std::less<>> counts = {
      {"n", &Dimensions::n},
      {"m", &Dimensions::m},
      {"l", &Dimensions::l},
      {"np", &Dimensions::np},
      {"ny", &Dimensions::ny},
      {"nmc", &Dimensions::nmc},
      {"initialPeriod", &Dimensions::initialPeriod},
      {"terminalPeriod", &Dimensions::terminalPeriod},
      {"maxLead", &Dimensions::maxLead},
      {"iterlim", &Dimensions::iterlim}};
  if (key == "tolerance") {
    d.setToleranceText(value);
    return true;
  }
  const auto it = counts.find(key);
  if (it == counts.end()) return false;
  // As the dialog converts it: text that is not a number reads 0.
  (d.*(it->second)).setText(value);
  return true;
}

class Runner {
 public:
  Runner(Model& model, Prompter& prompter, std::ostream& err)
      : model_(model), prompter_(prompter), err_(err) {}

  // Carries out one step; false (with a word on stderr) when it cannot be understood.
  bool step(const std::string& s) {
    if (s.rfind("form:", 0) == 0) return form(s.substr(5));
    if (s.rfind("size:", 0) == 0) return size(s.substr(5));
    if (s.rfind("set:", 0) == 0) return set(s.substr(4));
    return command(s);
  }

 private:
  bool bad(const std::string& s, const char* why) {
    err_ << "ovaro-cli transform: step '" << s << "': " << why << "\n";
    return false;
  }

  ShowSizeDialog counts(const std::vector<int>& args, bool observations) {
    return [this, args, observations] {
      if (observations) {
        if (!args.empty()) model_.dims.ny.set(args[0]);
      } else {
        if (!args.empty()) model_.dims.np.set(args[0]);
        if (args.size() > 1) model_.dims.nmc.set(args[1]);
      }
    };
  }

  bool command(const std::string& s) {
    const auto colon = s.find(':');
    const std::string head = s.substr(0, colon);
    const std::string tail = colon == std::string::npos ? "" : s.substr(colon + 1);
    int id = 0;
    if (const auto it = friendlyIds().find(head); it != friendlyIds().end())
      id = it->second;
    else if (!toInt(head, id))
      return bad(s, "not a transformation id or name (see --help)");
    std::vector<int> args;
    if (!tail.empty() && !toInts(tail, args)) return bad(s, "arguments must be whole numbers");
    const bool needsOne = id == 104 || id == 123 || (id >= 118 && id <= 122);
    if (needsOne && args.size() != 1) return bad(s, "needs one number after ':'");
    if ((id == 102 || id == 103) && args.size() != 2) return bad(s, "needs NP,NMC after ':'");
    const ShowSizeDialog sizeDialog = [this, &args] {
      const Dimensions old = model_.dims;
      model_.dims.terminalPeriod.set(args[0]);
      model_.dims.recomputePeriods();
      reconcileSize(model_, old, prompter_, [] { return std::optional<int>(); });
    };
    const AskDeleteElem ask = [&args] { return std::optional<int>(args.empty() ? 0 : args[0]); };
    if (!runTransformationCommand(model_, id, prompter_, counts(args, id == 104), sizeDialog, ask))
      return bad(s, "not a command of the Transformations menu");
    return true;
  }

  bool form(const std::string& s) {
    const auto eq = s.find('=');
    if (eq == std::string::npos) return bad("form:" + s, "expected form:KEY=ID");
    int SpecFlags::*flag = flagByName(s.substr(0, eq));
    if (flag == nullptr) return bad("form:" + s, "unknown option name");
    const std::string value = s.substr(eq + 1);
    const auto colon = value.find(':');
    int id = 0;
    std::vector<int> args;
    if (!toInt(value.substr(0, colon), id) ||
        (colon != std::string::npos && !toInts(value.substr(colon + 1), args)))
      return bad("form:" + s, "expected whole numbers");
    const SpecFlags old = model_.flags;
    model_.flags.*flag = id;
    reconcileSpecification(model_, old, prompter_,
                           counts(args, id == 1728 && flag == &SpecFlags::stochTerms));
    return true;
  }

  bool size(const std::string& s) {
    const auto at = s.find('@');
    std::vector<int> answers;
    if (at != std::string::npos && !toInts(s.substr(at + 1), answers))
      return bad("size:" + s, "the DeleteElem answers after '@' must be whole numbers");
    const Dimensions old = model_.dims;
    std::stringstream in(s.substr(0, at));
    std::string field;
    while (std::getline(in, field, ';')) {
      const auto eq = field.find('=');
      if (eq == std::string::npos ||
          !setSizeField(model_.dims, field.substr(0, eq), field.substr(eq + 1))) {
        model_.dims = old;
        return bad("size:" + s, "expected KEY=VALUE with a key of the info command's dims");
      }
    }
    model_.dims.recomputePeriods();
    std::size_t next = 0;
    reconcileSize(model_, old, prompter_, [&]() -> std::optional<int> {
      if (next >= answers.size()) return std::nullopt;  // DeleteElem cancelled
      return answers[next++];
    });
    return true;
  }

  bool set(const std::string& s) {
    const auto open = s.find('('), comma = s.find(',', open), close = s.find(')', comma);
    if (open == std::string::npos || comma == std::string::npos || close == std::string::npos ||
        close + 1 >= s.size() || s[close + 1] != '=')
      return bad("set:" + s, "expected set:NAME(r,c)=TEXT");
    const std::optional<MatrixId> id = matrixByName(s.substr(0, open));
    TextMatrix* m = id ? model_.matrix(*id) : nullptr;
    int r = 0, c = 0;
    if (m == nullptr) return bad("set:" + s, "the model holds no matrix of that name");
    if (!toInt(s.substr(open + 1, comma - open - 1), r) ||
        !toInt(s.substr(comma + 1, close - comma - 1), c) || r < 1 || c < 1 || r > m->rows() ||
        c > m->cols())
      return bad("set:" + s, "no such cell (rows and columns count from 1)");
    const std::string text = s.substr(close + 2);
    if (text.size() > kCellChars) return bad("set:" + s, "a cell holds at most 15 characters");
    m->setCell(r - 1, c - 1, text);
    return true;
  }

  Model& model_;
  Prompter& prompter_;
  std::ostream& err_;
};

}  // namespace

CLI::App* addTransformCommand(CLI::App& app, TransformOptions& o) {
  std::string names;
  for (const auto& [name, id] : friendlyIds()) names += "  " + name + " = " + std::to_string(id);
  CLI::App* cmd = app.add_subcommand(
      "transform",
      "Reshape a model as the Transformations menu and the specification and Size dialogs do");
  cmd->add_option("in", o.in, "Model file to read (.ovi)")->required();
  cmd->add_option("out", o.out, "Model file to write (.ovi)")->required();
  cmd->add_option("steps", o.steps,
                  "Steps, in order: ID or ID:ARGS (a Transformations command: 102:NP,NMC, "
                  "103:NP,NMC, 104:NY, 118-122:I to delete element I, 123:T), form:KEY=ID "
                  "(form:stochTerms=1724:NP,NMC, form:stochTerms=1728:NY), "
                  "size:KEY=VALUE[;KEY=VALUE...][@I,J,...], set:NAME(r,c)=TEXT. Names for the "
                  "ids:" +
                      names)
      ->required();
  cmd->add_flag("--no", o.no, "Answer No to the questions (default Yes)");
  cmd->add_flag("--json", o.json, "Print {\"ok\", \"messages\"}");
  return cmd;
}

int transform(const TransformOptions& o, std::ostream& out, std::ostream& err) {
  AnsweringPrompter prompter(&err, o.no);
  Model model;
  auto finish = [&](bool ok, int code) {
    if (o.json) out << dumpJson({{"ok", ok}, {"messages", messagesJson(prompter.messages())}});
    return code;
  };
  if (readModelFile(o.in, model, prompter) != 1) {
    prompter.inform("Could not read file " + o.in + "!", "Ovaro", Icon::Exclamation);
    return finish(false, kExitFailed);
  }
  Runner runner(model, prompter, err);
  for (const std::string& s : o.steps)
    if (!runner.step(s)) return finish(false, kExitUsage);
  if (writeModelFile(o.out, model, prompter) != 1) {
    prompter.inform("Could not write file " + o.out, "Ovaro", Icon::Exclamation);
    return finish(false, kExitFailed);
  }
  return finish(true, kExitOk);
}

}  // namespace ovaro::cli
