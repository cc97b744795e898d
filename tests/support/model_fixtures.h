// Models for tests: sized and specified as asked, with every cell and label holding a text that
// tells it apart from every other one, so that a field read into the wrong place shows.
#pragma once

#include <ostream>
#include <string>

#include "model/model.h"

namespace ovaro::testing {

struct ModelShape {
  int n = 2, m = 1, l = 1, np = 0, ny = 0, nmc = 0;
  int initialPeriod = 1, terminalPeriod = 4;
  int maxLead = 0, iterlim = 10;
  std::string tolerance = "1.0E-06";
  SpecFlags flags{0,
                  opt::kQuadraticTracking,
                  opt::kRegular,
                  opt::kForwardNo,
                  opt::kPolicyNo,
                  opt::kZConstant,
                  opt::kWConstant,
                  opt::kLambdaConstant,
                  opt::kXdesConstant,
                  opt::kUdesConstant,
                  opt::kGenerateInternally,
                  opt::kOption450,
                  opt::kOption453,
                  "0"};
};

inline Model makeModel(ModelShape s, int stochTerms = opt::kDeterministic) {
  Model model;
  model.fileVersion = kModelFileVersion;
  model.acronym = "TESTMOD";
  model.name = "A model for tests";
  Dimensions& d = model.dims;
  d.n.set(s.n);
  d.m.set(s.m);
  d.l.set(s.l);
  d.np.set(s.np);
  d.ny.set(s.ny);
  d.nmc.set(s.nmc);
  d.initialPeriod.set(s.initialPeriod);
  d.terminalPeriod.set(s.terminalPeriod);
  d.recomputePeriods();
  d.maxLead.set(s.maxLead);
  d.iterlim.set(s.iterlim);
  d.setToleranceText(s.tolerance);
  model.flags = s.flags;
  model.flags.stochTerms = stochTerms;
  allocateModelArrays(model);
  return model;
}

// Gives every cell of every held matrix a distinct text ("A:0.1" style, within 15 characters) and
// every label a distinct acronym and name.
inline void fillDistinct(Model& model) {
  for (int i = 0; i < kMatrixCount; ++i) {
    const auto id = static_cast<MatrixId>(i);
    TextMatrix* t = model.matrix(id);
    if (t == nullptr) continue;
    for (int r = 0; r < t->rows(); ++r)
      for (int c = 0; c < t->cols(); ++c)
        t->setCell(r, c,
                   std::string(matrixSpec(id).name) + std::to_string(r) + "." + std::to_string(c));
  }
  const char* tags[] = {"S", "C", "E", "P", "O", "U"};
  int k = 0;
  for (LabelKind kind : {LabelKind::States, LabelKind::Controls, LabelKind::Exogenous,
                         LabelKind::Periods, LabelKind::Observations, LabelKind::Parameters}) {
    LabelTable& t = model.labels(kind);
    for (std::size_t i = 0; i < t.acronyms.size(); ++i) {
      t.acronyms[i] = std::string(tags[k]) + std::to_string(i + 1);
      if (!t.names.empty()) t.names[i] = std::string("Name of ") + tags[k] + std::to_string(i + 1);
    }
    ++k;
  }
  model.description = "First line\r\nsecond line with  blanks \nand a tab\there";
}

}  // namespace ovaro::testing

namespace ovaro {

// Readable failure output for the Model's text types.
inline void PrintTo(const TextMatrix& t, std::ostream* os) {
  *os << t.rows() << "x" << t.cols() << " {";
  for (int r = 0; r < t.rows(); ++r) {
    *os << (r ? "; " : "");
    for (int c = 0; c < t.cols(); ++c) *os << (c ? " " : "") << '"' << t.cell(r, c) << '"';
  }
  *os << "}";
}

inline void PrintTo(const LabelTable& t, std::ostream* os) {
  *os << "{";
  for (const auto& a : t.acronyms) *os << '"' << a << "\" ";
  *os << "|";
  for (const auto& n : t.names) *os << " \"" << n << '"';
  *os << "}";
}

}  // namespace ovaro
