// Sharing the runs of one comparison among several processes (for example the ranks of an MPI
// job spread over machines).
//
// Every process draws the random terms of every run, in run order, exactly as a single process
// does: the stream and its accumulators cannot be entered in the middle, so a process skips the
// runs it does not own by drawing them, never by predicting where the stream would be. Each
// process then solves only its own share of each batch of runs and sends what those runs
// produced to process 0, which records every run in run order and alone shows and prints
// anything. The result is the same to the bit as that of one process.
//
// The transport is abstract: the batch tool supplies one over MPI; tests simulate processes in
// one program.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "numeric/arrays.h"
#include "numeric/prompter.h"

namespace ovaro {

using RunBytes = std::vector<unsigned char>;

// How the runs of one comparison are shared out: each process solves a share of every batch in
// proportion to its weight (its thread count); a process of weight 0 solves nothing.
struct RunShares {
  int rank = 0;
  std::vector<int> weights;

  // One process on its own with this many threads.
  static RunShares alone(int threads) { return RunShares{0, {threads}}; }
  int total() const;
  // The positions [first, second) of a batch of `count` runs that process `r` solves.
  std::pair<int, int> slice(int r, int count) const;
};

class RunDistributor {
 public:
  virtual ~RunDistributor() = default;

  // This process's place (0: the one that records and prints) and the number of processes.
  virtual int rank() const = 0;
  virtual int size() const = 0;
  // Every process hands in the same number of values and gets every process's values, rank by
  // rank.
  virtual std::vector<long long> allGather(const std::vector<long long>& mine) = 0;
  // A process other than 0 sends to process 0; process 0 takes the next message of process
  // `from` (messages of one sender arrive in the order sent).
  virtual void sendToFirst(const RunBytes& bytes) = 0;
  virtual RunBytes receiveFrom(int from) = 0;

  // Every process calls this once per shared command: at the head of the run loop
  // (takingPart) or, if it ended before reaching it, at the end (leave). The runs are shared
  // among all processes only when all take part with the same run count; otherwise process 0
  // solves every run itself and the others solve nothing, so that no process waits for runs that
  // will never come.
  RunShares join(bool takingPart, int runs, int threads);
  void leave() {
    if (!joined_) join(false, 0, 0);
  }
  bool joined() const { return joined_; }

 private:
  bool joined_ = false;
};

// The parts of a run record in the order written; the reader takes them back in the same order.
// A record is read only by the same program that wrote it, so numbers keep their bytes.
class RunRecordWriter {
 public:
  void put(bool value);
  void put(int value);
  void put(double value);
  void put(const std::string& value);
  void put(const Mat& value);
  void put(const Message& value);
  const RunBytes& bytes() const { return bytes_; }

 private:
  void raw(const void* data, std::size_t size);
  RunBytes bytes_;
};

class RunRecordReader {
 public:
  explicit RunRecordReader(const RunBytes& bytes) : bytes_(bytes) {}
  bool getBool();
  int getInt();
  double getDouble();
  std::string getString();
  Mat getMat();
  Message getMessage();
  // True when every byte has been read.
  bool atEnd() const { return at_ == bytes_.size(); }

 private:
  void raw(void* data, std::size_t size);
  const RunBytes& bytes_;
  std::size_t at_ = 0;
};

}  // namespace ovaro
