// The same runs however they are shared: a traced comparison runs them in order on one thread;
// untraced ones go to a pool of threads, or to other processes (simulated one after another in
// this program: the helpers first, their records kept in inboxes that process 0 then reads).
// Every way must record the traced result to the bit, messages and stream position included.
#include "stoch/run_distributor.h"

#include <gtest/gtest.h>

#include <deque>
#include <sstream>

#include "model/model_file.h"
#include "numeric/matrix_ops.h"
#include "stoch/compare.h"
#include "support/temp_dir.h"

namespace ovaro {
namespace {

struct Exchange {
  int size;
  std::vector<long long> others;  // what every other process hands in at the join
  std::vector<std::deque<RunBytes>> inbox = std::vector<std::deque<RunBytes>>(3);
  std::size_t received = 0;  // bytes process 0 took from the others
};

struct SequentialDistributor : RunDistributor {
  SequentialDistributor(Exchange& x, int rank) : x_(x), rank_(rank) {}
  int rank() const override { return rank_; }
  int size() const override { return x_.size; }
  std::vector<long long> allGather(const std::vector<long long>& mine) override {
    std::vector<long long> all;
    for (int r = 0; r < x_.size; ++r) {
      const std::vector<long long>& part = r == rank_ ? mine : x_.others;
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }
  void sendToFirst(const RunBytes& bytes) override {
    x_.inbox[static_cast<std::size_t>(rank_)].push_back(bytes);
  }
  RunBytes receiveFrom(int from) override {
    auto& box = x_.inbox[static_cast<std::size_t>(from)];
    RunBytes bytes = std::move(box.at(0));  // throws when nothing was sent
    box.pop_front();
    x_.received += bytes.size();
    return bytes;
  }
  Exchange& x_;
  int rank_;
};

// One process's comparison of 23 runs (not a multiple of any batch), as text that holds every
// bit it keeps (hexadecimal floating point), its messages and where it leaves the stream; a
// helper process gives its status alone.
std::string compareIn(const Model& model, RunDistributor* d, int threads, bool traced = false) {
  testing::TempDir dir;
  DebugFile file;
  EXPECT_TRUE(!traced || file.open(dir.file("run.dbg")));
  RecordingPrompter prompter;
  NullProgress progress;
  RandomState random;
  CompareSettings settings;
  settings.methods = {true, true, true, true, true};
  settings.runs = 23;
  settings.eps = macheps();
  settings.threads = threads;
  settings.distributor = d;
  settings.file = traced ? &file : nullptr;
  CompareResult r = maincompare(model, settings, random, prompter, progress);
  std::ostringstream t;
  t << std::hexfloat << r.status << ' ' << r.runs;
  if (d != nullptr && d->rank() > 0) return t.str();
  auto mat = [&](const Mat& a) {
    t << '[' << a.rlo() << ' ' << a.rhi() << ' ' << a.clo() << ' ' << a.chi() << ']';
    for (int i = a.rlo(); i <= a.rhi(); ++i)
      for (int j = a.clo(); j <= a.chi(); ++j) t << a(i, j) << ' ';
  };
  for (const auto& row : r.mcResults)
    for (double v : row) t << v << ' ';
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    const RunPaths& last = r.lastRun[k];
    t << r.criterionSums[k] << ' ' << r.averages[k] << ' ' << r.lowestCounts[k] << ' '
      << last.criterion;
    for (const Mat* m : {&last.xs, &last.us, &last.thetas, &last.thetatrue}) mat(*m);
  }
  for (const auto& [name, m] : r.statistics) t << '\n' << name, mat(m);
  for (const Message& m : prompter.messages()) t << '\n' << m.caption << ": " << m.text;
  t << "\nseed " << random.quarnsSeed << " spare " << random.spareFlag << random.spare;
  return t.str();
}

// One comparison on `x.size` simulated processes, process 0 last; its text.
std::string shared(const Model& model, Exchange& x, int threads) {
  for (int r = x.size - 1; r > 0; --r) {
    SequentialDistributor d(x, r);
    EXPECT_EQ(compareIn(model, &d, threads), "0 0");  // a helper keeps nothing
  }
  SequentialDistributor first(x, 0);
  return compareIn(model, &first, threads);
}

class SharedRuns : public ::testing::TestWithParam<const char*> {};

// A learning model, a forward-looking one, measurement error, the policy-to-parameter effect.
INSTANTIATE_TEST_SUITE_P(Examples, SharedRuns,
                         ::testing::Values("learn1.ovi", "fwdnz1.ovi", "tvp1.ovi", "credib2.ovi"));

TEST_P(SharedRuns, EveryWayOfSharingRecordsTheTracedResult) {
  Model model;
  RecordingPrompter reading;
  ASSERT_EQ(
      readModelFile(std::string(OVARO_SOURCE_DIR) + "/examples/" + GetParam(), model, reading), 1);
  const std::string serial = compareIn(model, nullptr, 1, true);
  ASSERT_EQ(serial.rfind("1 23", 0), 0u);
  for (int n : {2, 3}) {
    const int threads = n == 2 ? 3 : 16;
    Exchange x{n, {1, 23, threads}};  // every process takes part, with 23 runs
    EXPECT_EQ(shared(model, x, threads), serial) << n;
    EXPECT_GT(x.received, 0u);  // the others did solve runs
  }
  // A process that stops before its runs (one that cannot read the model, say) leaves process 0
  // to solve every run itself, and the other to solve none.
  Exchange x{2, {0, 0, 0}};
  EXPECT_EQ(shared(model, x, 2), serial);
  EXPECT_EQ(x.received, 0u);
}

}  // namespace
}  // namespace ovaro
