#include "app/model_report.h"

#include <algorithm>
#include <sstream>

#include "model/options.h"

namespace ovaro::cli {

namespace {

using nlohmann::json;

std::string optionText(int id) {
  const std::string_view label = opt::label(id);
  if (label.empty()) return id == 0 ? "(none)" : std::to_string(id);
  return std::string(label) + " (" + std::to_string(id) + ")";
}

// Model texts are 8-bit and go into the JSON as they are; dumpJson replaces bytes that are not
// valid UTF-8.
json text(std::string_view s) {
  return json(std::string(s));
}

std::string rtrim(std::string s) {
  while (!s.empty() && s.back() == ' ') s.pop_back();
  return s;
}

struct NamedTable {
  const char* title;
  const char* key;
  LabelKind kind;
};

constexpr NamedTable kLabelTables[] = {
    {"States", "states", LabelKind::States},
    {"Controls", "controls", LabelKind::Controls},
    {"Exogenous variables", "exogenous", LabelKind::Exogenous},
    {"Periods", "periods", LabelKind::Periods},
    {"Uncertain parameters", "parameters", LabelKind::Parameters},
    {"Observations", "observations", LabelKind::Observations},
};

}  // namespace

std::string modelInfoText(const Model& model, std::string_view path) {
  const Dimensions& d = model.dims;
  const SpecFlags& f = model.flags;
  const RandomSwitches& s = model.randomSwitches;
  std::ostringstream o;
  o << "Model        " << model.acronym << " - " << model.name << "\n";
  o << "File         " << path << " (version " << model.fileVersion << ")\n";
  o << "Sizes        n = " << d.n.value << " states, m = " << d.m.value
    << " controls, l = " << d.l.value << " exogenous, ny = " << d.ny.value
    << " observations, np = " << d.np.value << " uncertain parameters\n";
  o << "Periods      " << d.initialPeriod.value << " to " << d.terminalPeriod.value
    << " (nt = " << d.nt.value << ")\n";
  o << "Iteration    maximum lead " << d.maxLead.value << ", iteration limit " << d.iterlim.value
    << ", tolerance " << (d.toleranceText.empty() ? "(none)" : d.toleranceText) << "\n";
  o << "Monte Carlo  " << d.nmc.value << " runs\n";
  o << "Forms        criterion " << optionText(f.criterionForm) << ", system "
    << optionText(f.systemForm) << ", forward variables " << optionText(f.forwardVars)
    << ", policy to parameter " << optionText(f.policyToParam) << "\n";
  o << "             Z " << optionText(f.zForm) << ", W " << optionText(f.wForm) << ", Lambda "
    << optionText(f.lambdaForm) << ", XDES " << optionText(f.xdesForm) << ", UDES "
    << optionText(f.udesForm) << "\n";
  o << "Stochastic   " << optionText(f.stochTerms) << "; random terms "
    << optionText(f.randomSource) << "\n";
  o << "Random terms Uncertain Parameters " << s.uncertainParameters
    << ", Certain But Different From Mean " << s.certainButDifferent
    << ", Uncertain State Variables " << s.uncertainStates << ", System Equations "
    << s.systemEquations << ", Measurement Equations " << s.measurementEquations
    << ", Time-Varying Parameter Eq " << s.timeVaryingParameters << "\n";

  for (const NamedTable& t : kLabelTables) {
    const LabelTable& table = model.labels(t.kind);
    if (table.acronyms.empty()) continue;
    o << "\n" << t.title << "\n";
    if (table.names.empty()) {  // periods: acronyms only, on one line
      o << " ";
      for (const auto& a : table.acronyms) o << ' ' << a;
      o << "\n";
      continue;
    }
    for (std::size_t i = 0; i < table.acronyms.size(); ++i) {
      o << "  " << (i + 1) << "  " << table.acronyms[i];
      if (i < table.names.size()) {
        const std::string name = rtrim(table.names[i]);
        if (!name.empty())
          o << std::string(std::max<std::size_t>(1, 10 - table.acronyms[i].size()), ' ') << name;
      }
      o << "\n";
    }
  }

  o << "\nMatrices\n";
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    const TextMatrix* t = model.matrix(id);
    if (t == nullptr) continue;
    o << "  " << matrixSpec(id).name << " (" << t->rows() << " x " << t->cols() << ")\n";
    std::size_t width = 1;
    for (int r = 0; r < t->rows(); ++r)
      for (int c = 0; c < t->cols(); ++c) width = std::max(width, t->cell(r, c).size());
    for (int r = 0; r < t->rows(); ++r) {
      o << "   ";
      for (int c = 0; c < t->cols(); ++c) {
        const std::string_view cell = t->cell(r, c);
        o << ' ' << std::string(width - cell.size(), ' ') << cell;
      }
      o << "\n";
    }
  }

  if (!model.description.empty()) {
    // The description keeps the line ends it was typed with; a terminal wants plain newlines.
    std::string desc = model.description;
    std::erase(desc, '\r');
    o << "\nDescription\n" << desc << "\n";
  }
  return o.str();
}

std::string dumpJson(const json& j) {
  return j.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

json messagesJson(const std::vector<Message>& messages) {
  json list = json::array();
  for (const Message& m : messages)
    list.push_back({{"caption", text(m.caption)}, {"text", text(m.text)}});
  return list;
}

json modelInfoJson(const Model& model, const std::vector<Message>& messages) {
  const Dimensions& d = model.dims;
  const SpecFlags& f = model.flags;
  const RandomSwitches& s = model.randomSwitches;
  json j;
  j["version"] = model.fileVersion;
  j["acronym"] = text(model.acronym);
  j["name"] = text(model.name);
  j["dims"] = {{"n", d.n.value},
               {"m", d.m.value},
               {"l", d.l.value},
               {"initialPeriod", d.initialPeriod.value},
               {"terminalPeriod", d.terminalPeriod.value},
               {"nt", d.nt.value},
               {"maxLead", d.maxLead.value},
               {"iterlim", d.iterlim.value},
               {"tolerance", d.tolerance},
               {"np", d.np.value},
               {"nmc", d.nmc.value},
               {"ny", d.ny.value}};
  j["flags"] = {{"stochTerms", f.stochTerms},
                {"criterionForm", f.criterionForm},
                {"systemForm", f.systemForm},
                {"forwardVars", f.forwardVars},
                {"policyToParam", f.policyToParam},
                {"zForm", f.zForm},
                {"wForm", f.wForm},
                {"lambdaForm", f.lambdaForm},
                {"xdesForm", f.xdesForm},
                {"udesForm", f.udesForm},
                {"randomSource", f.randomSource},
                {"option450", f.option450},
                {"option452", f.option452},
                {"reservedWord", text(f.reservedWord)},
                {"randomTerms",
                 {{"uncertainParameters", s.uncertainParameters},
                  {"certainButDifferentFromMean", s.certainButDifferent},
                  {"uncertainStateVariables", s.uncertainStates},
                  {"systemEquations", s.systemEquations},
                  {"measurementEquations", s.measurementEquations},
                  {"timeVaryingParameterEq", s.timeVaryingParameters}}},
                {"resultsDisplay",
                 {{"words", model.display.words}, {"orientation", model.display.orientation}}}};

  json labels = json::object();
  for (const NamedTable& t : kLabelTables) {
    const LabelTable& table = model.labels(t.kind);
    json list = json::array();
    for (std::size_t i = 0; i < table.acronyms.size(); ++i) {
      json entry = {{"acronym", text(table.acronyms[i])}};
      if (i < table.names.size()) entry["name"] = text(table.names[i]);
      list.push_back(entry);
    }
    labels[t.key] = list;
  }
  j["labels"] = labels;

  json matrices = json::object();
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    const TextMatrix* t = model.matrix(id);
    if (t == nullptr) continue;
    json rows = json::array();
    for (int r = 0; r < t->rows(); ++r) {
      json row = json::array();
      for (int c = 0; c < t->cols(); ++c) row.push_back(text(t->cell(r, c)));
      rows.push_back(row);
    }
    matrices[matrixSpec(id).name] = rows;
  }
  j["matrices"] = matrices;
  j["description"] = text(model.description);
  j["messages"] = messagesJson(messages);
  return j;
}

}  // namespace ovaro::cli
