// The seam for long work that reports how far it has come (the Monte Carlo run loop): a progress
// bar in the workbench, a terminal bar in the batch tool, nothing in tests.
#pragma once

namespace ovaro {

class Progress {
 public:
  virtual ~Progress() = default;
  // The work has `maximum` steps.
  virtual void start(int maximum) = 0;
  // One more step is done.
  virtual void step() = 0;
  // The work is over (finished or abandoned).
  virtual void finish() = 0;
};

class NullProgress final : public Progress {
 public:
  void start(int) override {}
  void step() override {}
  void finish() override {}
};

}  // namespace ovaro
