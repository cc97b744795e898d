#include "app/cli_process.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "app/cli.h"

#if defined(OVARO_HAVE_MPI)
#include <mpi.h>

#include "stoch/run_distributor.h"
#endif

namespace ovaro::cli {

#if defined(OVARO_HAVE_MPI)

namespace {

// Process 0 takes records from each other process in the order they were sent.
constexpr int kRunTag = 16;

// Whether a launcher started this process as one of several. Without one, MPI is never started,
// so a plain run is the plain program.
bool startedByLauncher() {
  for (const char* name : {"OMPI_COMM_WORLD_SIZE", "PMIX_RANK", "PMI_RANK", "PMI_SIZE"})
    if (std::getenv(name) != nullptr) return true;
  return false;
}

void check(int code, const char* what) {
  if (code != MPI_SUCCESS) throw std::runtime_error(std::string("MPI failed in ") + what);
}

// The run distributor over MPI's world: the comparison's threads call nothing here; only the
// thread that draws and records does, so MPI is started for one calling thread.
class MpiRunDistributor final : public RunDistributor {
 public:
  MpiRunDistributor() {
    check(MPI_Comm_rank(MPI_COMM_WORLD, &rank_), "MPI_Comm_rank");
    check(MPI_Comm_size(MPI_COMM_WORLD, &size_), "MPI_Comm_size");
  }
  int rank() const override { return rank_; }
  int size() const override { return size_; }

  std::vector<long long> allGather(const std::vector<long long>& mine) override {
    std::vector<long long> all(mine.size() * static_cast<std::size_t>(size_));
    check(MPI_Allgather(mine.data(), static_cast<int>(mine.size()), MPI_LONG_LONG, all.data(),
                        static_cast<int>(mine.size()), MPI_LONG_LONG, MPI_COMM_WORLD),
          "MPI_Allgather");
    return all;
  }

  void sendToFirst(const RunBytes& bytes) override {
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
      throw std::runtime_error("a batch of run records is too large for one message");
    check(MPI_Send(bytes.data(), static_cast<int>(bytes.size()), MPI_BYTE, 0, kRunTag,
                   MPI_COMM_WORLD),
          "MPI_Send");
  }

  RunBytes receiveFrom(int from) override {
    MPI_Status status;
    check(MPI_Probe(from, kRunTag, MPI_COMM_WORLD, &status), "MPI_Probe");
    int size = 0;
    check(MPI_Get_count(&status, MPI_BYTE, &size), "MPI_Get_count");
    RunBytes bytes(static_cast<std::size_t>(size));
    check(MPI_Recv(bytes.data(), size, MPI_BYTE, from, kRunTag, MPI_COMM_WORLD, MPI_STATUS_IGNORE),
          "MPI_Recv");
    return bytes;
  }

 private:
  int rank_ = 0;
  int size_ = 1;
};

int runShared(int argc, char** argv) {
  int provided = 0;
  if (MPI_Init_thread(nullptr, nullptr, MPI_THREAD_FUNNELED, &provided) != MPI_SUCCESS) {
    std::cerr << "ovaro-cli: MPI could not be started\n";
    return 1;
  }
  int code = 1;
  try {
    MpiRunDistributor mpi;
    if (mpi.size() == 1) {
      code = run(argc, argv, std::cout, std::cerr);
    } else {
      // The other processes print nothing: process 0 shows every message of every run.
      std::ostream quiet(nullptr);
      code = mpi.rank() == 0 ? run(argc, argv, std::cout, std::cerr, &mpi)
                             : run(argc, argv, quiet, quiet, &mpi);
      // A process that stopped before the runs (or a command that shares none) still joins the
      // share-out, so that nobody waits for it; then all end with process 0's exit code.
      mpi.leave();
      check(MPI_Bcast(&code, 1, MPI_INT, 0, MPI_COMM_WORLD), "MPI_Bcast");
    }
  } catch (const std::exception& e) {
    int rank = 0;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    std::cerr << "ovaro-cli (process " << rank << "): " << e.what() << "\n";
    MPI_Abort(MPI_COMM_WORLD, 1);
    return 1;
  }
  MPI_Finalize();
  return code;
}

}  // namespace

int runProcess(int argc, char** argv) {
  if (!startedByLauncher()) return run(argc, argv, std::cout, std::cerr);
  return runShared(argc, argv);
}

#else

int runProcess(int argc, char** argv) {
  return run(argc, argv, std::cout, std::cerr);
}

#endif

}  // namespace ovaro::cli
