// Sharing a comparison's runs among processes, simulated by threads of this program that talk
// through an in-memory exchange: process 0's result must be the single process's to the bit.
#include "stoch/run_distributor.h"

#include <gtest/gtest.h>

#include <barrier>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "model/model_file.h"
#include "numeric/matrix_ops.h"
#include "stoch/compare.h"

namespace ovaro {
namespace {

// What the simulated processes share: one inbox per sender for process 0, and a meeting point.
struct Exchange {
  explicit Exchange(int n) : size(n), inbox(static_cast<std::size_t>(n)), meet(n) {}
  const int size;
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<std::deque<RunBytes>> inbox;
  std::vector<long long> gathered;
  std::barrier<> meet;
  std::size_t received = 0;  // bytes process 0 took from the others
};

class InProcessDistributor final : public RunDistributor {
 public:
  InProcessDistributor(Exchange& x, int rank) : x_(x), rank_(rank) {}
  int rank() const override { return rank_; }
  int size() const override { return x_.size; }
  std::vector<long long> allGather(const std::vector<long long>& mine) override {
    x_.meet.arrive_and_wait();  // the last round's values have been taken
    {
      std::lock_guard lock(x_.mutex);
      x_.gathered.resize(mine.size() * static_cast<std::size_t>(x_.size));
      std::copy(mine.begin(), mine.end(),
                x_.gathered.begin() + static_cast<long>(mine.size()) * rank_);
    }
    x_.meet.arrive_and_wait();  // every process's values are in
    std::lock_guard lock(x_.mutex);
    return x_.gathered;
  }
  void sendToFirst(const RunBytes& bytes) override {
    std::lock_guard lock(x_.mutex);
    x_.inbox[static_cast<std::size_t>(rank_)].push_back(bytes);
    x_.changed.notify_all();
  }
  RunBytes receiveFrom(int from) override {
    std::unique_lock lock(x_.mutex);
    auto& box = x_.inbox[static_cast<std::size_t>(from)];
    x_.changed.wait(lock, [&] { return !box.empty(); });
    RunBytes bytes = std::move(box.front());
    box.pop_front();
    x_.received += bytes.size();
    return bytes;
  }

 private:
  Exchange& x_;
  int rank_;
};

struct Outcome {
  CompareResult result;
  std::vector<Message> messages;
  RandomState random;
};

// One process's comparison; `takesPart` false: the process stops before its runs (as one that
// cannot read the model) and only leaves the share-out.
Outcome compareIn(const Model& model, RunDistributor* d, bool takesPart = true) {
  Outcome o;
  RecordingPrompter prompter;
  NullProgress progress;
  CompareSettings settings;
  settings.methods = {true, true, true, true, true};
  settings.runs = 23;  // not a multiple of any batch
  settings.eps = macheps();
  settings.threads = 2;
  settings.distributor = d;
  if (takesPart) o.result = maincompare(model, settings, o.random, prompter, progress);
  if (d != nullptr) d->leave();
  o.messages = prompter.messages();
  return o;
}

// Everything a comparison keeps, as text that holds every bit (hexadecimal floating point).
std::string bits(const Outcome& o) {
  std::ostringstream t;
  t << std::hexfloat;
  auto mat = [&](const Mat& a) {
    t << '[' << a.rlo() << ' ' << a.rhi() << ' ' << a.clo() << ' ' << a.chi() << ']';
    for (int i = a.rlo(); i <= a.rhi(); ++i)
      for (int j = a.clo(); j <= a.chi(); ++j) t << a(i, j) << ' ';
  };
  const CompareResult& r = o.result;
  t << r.status << ' ' << r.runs << '\n';
  for (const auto& row : r.mcResults)
    for (double v : row) t << v << ' ';
  for (std::size_t k = 0; k < kMethodCount; ++k) {
    const RunPaths& last = r.lastRun[k];
    t << r.criterionSums[k] << ' ' << r.averages[k] << ' ' << r.lowestCounts[k] << ' '
      << last.criterion;
    for (const Mat* m : {&last.xs, &last.us, &last.thetas, &last.thetatrue}) mat(*m);
  }
  for (const auto& [name, m] : r.statistics) t << '\n' << name, mat(m);
  for (const Message& m : o.messages) t << '\n' << m.caption << ": " << m.text;
  // The stream is left where one process leaves it, the spare normal included.
  t << "\nseed " << o.random.quarnsSeed << " spare " << o.random.spareFlag << o.random.spare;
  return t.str();
}

// Runs one comparison on `n` simulated processes; process `absent` (if any) never reaches its runs.
std::vector<Outcome> shared(const Model& model, int n, Exchange& x, int absent = -1) {
  std::vector<Outcome> out(static_cast<std::size_t>(n));
  std::vector<std::jthread> processes;
  for (int r = 0; r < n; ++r)
    processes.emplace_back([&, r] {
      InProcessDistributor d(x, r);
      out[static_cast<std::size_t>(r)] = compareIn(model, &d, r != absent);
    });
  processes.clear();  // joins
  return out;
}

class SharedRuns : public testing::TestWithParam<const char*> {};

// A learning model, a forward-looking one, measurement error, the policy-to-parameter effect.
INSTANTIATE_TEST_SUITE_P(Examples, SharedRuns,
                         testing::Values("learn1.ovi", "fwdnz1.ovi", "tvp1.ovi", "credib2.ovi"));

TEST_P(SharedRuns, ProcessZeroRecordsWhatOneProcessRecords) {
  Model model;
  RecordingPrompter reading;
  ASSERT_EQ(
      readModelFile(std::string(OVARO_SOURCE_DIR) + "/examples/" + GetParam(), model, reading), 1);
  const Outcome serial = compareIn(model, nullptr);
  ASSERT_EQ(serial.result.status, 1);
  ASSERT_EQ(serial.result.runs, 23);
  for (int n : {2, 3}) {
    SCOPED_TRACE(n);
    Exchange x(n);
    const std::vector<Outcome> out = shared(model, n, x);
    EXPECT_EQ(bits(out[0]), bits(serial));
    EXPECT_GT(x.received, 0u);  // the others did solve runs
    for (int r = 1; r < n; ++r) EXPECT_EQ(out[static_cast<std::size_t>(r)].result.status, 0);
  }
  // A process that stops before its runs leaves process 0 to solve every run itself.
  Exchange x(2);
  const std::vector<Outcome> out = shared(model, 2, x, 1);
  EXPECT_EQ(bits(out[0]), bits(serial));
  EXPECT_EQ(x.received, 0u);
}

}  // namespace
}  // namespace ovaro
