// Learning in a forward-looking model: with nothing random and the controller's estimate starting
// at the truth, the filter has nothing to learn, so certainty equivalence (with or without
// updating) must steer exactly as the deterministic solution of the same model does.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "model/options.h"
#include "numeric/matrix_ops.h"
#include "solve/drivers.h"
#include "stoch/compare.h"
#include "support/data_models.h"

namespace ovaro {
namespace {

// Two states, one control, lead 1; the one uncertain parameter is B(1, 1) (in the Pindyck form
// A0 only links state 2 to state 1, so B(1, 1) = B1(1, 1)), and TH0 is its true value. No noise of
// any kind, the initial estimates at the truth, and the handcrafted rule u = -0.4 x1 + 0.6.
class ForwardLearning : public ::testing::TestWithParam<int> {
 protected:
  const bool pindyck = GetParam() == opt::kPindyck;
  const Model model = testing::dataModel(pindyck ? "forward_pindyck.ovi" : "forward_regular.ovi");
  RandomState random;
  RecordingPrompter prompter;
  NullProgress progress;
};

TEST_P(ForwardLearning, CertaintyEquivalenceIsTheDeterministicSolution) {
  const std::optional<Solution> qlp = solveQlp(model, prompter, SolveTrace());
  ASSERT_TRUE(qlp.has_value());
  CompareSettings settings;
  settings.methods[kCe] = settings.methods[kCeWo] = true;
  settings.eps = macheps();
  const CompareResult r = maincompare(model, settings, random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  for (const auto& message : prompter.messages())
    EXPECT_EQ(message.caption.rfind("Warning", 0), std::string::npos) << message.text;
  for (int method : {kCe, kCeWo}) {
    const RunPaths& p = r.lastRun[static_cast<std::size_t>(method)];
    SCOPED_TRACE(kMethodNames[static_cast<std::size_t>(method)]);
    for (const auto& run : r.mcResults)
      EXPECT_NEAR(run[static_cast<std::size_t>(method)], qlp->criterion, 1e-9 * qlp->criterion);
    for (int t = 0; t < r.nt; ++t) EXPECT_NEAR(p.us(1, t), qlp->us(1, t), 1e-7) << "period " << t;
    for (int t = 0; t <= r.nt; ++t) EXPECT_NEAR(p.thetas(1, t), 0.5, 1e-13) << "period " << t;
  }
}

// Without noise HCFR's expectations are fulfilled: its true path solves the model's own equation
// x(t+1) = A0 x(t+1) + D1 x(t+1) + A x(t) + B u(t) + c, the lead state being the path itself.
TEST_P(ForwardLearning, HandcraftedRuleExpectsThePathItsRuleProduces) {
  auto v = [&](MatrixId id, int r, int c) {
    const TextMatrix* t = model.matrix(id);
    return t == nullptr ? 0.0 : std::atof(std::string(t->cell(r, c)).c_str());
  };
  CompareSettings settings;
  settings.methods[kHcfr] = true;
  settings.runs = 1;
  settings.eps = macheps();
  const CompareResult r = maincompare(model, settings, random, prompter, progress);
  ASSERT_EQ(r.status, 1);
  const RunPaths& p = r.lastRun[kHcfr];
  const MatrixId a = pindyck ? MatrixId::A1 : MatrixId::A, b = pindyck ? MatrixId::B1 : MatrixId::B;
  const MatrixId c = pindyck ? MatrixId::C1 : MatrixId::C,
                 d = pindyck ? MatrixId::DHAT1 : MatrixId::D1;
  for (int t = 0; t < r.nt; ++t) {
    EXPECT_NEAR(p.us(1, t), v(MatrixId::G, 0, 0) * p.xs(1, t) + v(MatrixId::g, 0, 0), 1e-12);
    for (int i = 0; i < 2; ++i) {
      double residual = p.xs(i + 1, t + 1) - v(b, i, 0) * p.us(1, t) - v(c, i, 0);
      for (int j = 0; j < 2; ++j)
        residual -= (pindyck ? v(MatrixId::A0, i, j) : 0.0) * p.xs(j + 1, t + 1) +
                    v(d, i, j) * p.xs(j + 1, t + 1) + v(a, i, j) * p.xs(j + 1, t);
      EXPECT_NEAR(residual, 0.0, 1e-7) << "state " << i + 1 << ", period " << t;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Forms, ForwardLearning, ::testing::Values(opt::kRegular, opt::kPindyck),
                         [](const auto& info) {
                           return std::string(info.param == opt::kRegular ? "Regular" : "Pindyck");
                         });

}  // namespace
}  // namespace ovaro
