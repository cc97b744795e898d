// The batch tool, ovaro-cli: the workbench's jobs without a window.
//
//   ovaro-cli info MODEL.ovi [--json]     the model's sizes, forms, labels and matrices
//   ovaro-cli convert IN.ovi OUT.ovi      read a model and write it again as the current version
//   ovaro-cli transform IN OUT STEP...    reshape a model as the workbench's transformations do
//   ovaro-cli export, import, import-matrix   QLP, VELD and VELDPC files and matrix files
//   ovaro-cli solve, compare, updating    the single solves and the Monte Carlo commands
//   ovaro-cli examples [--json]           the example library's table
//
// Messages go to stderr as "caption: text" and, with --json, into the output's "messages" list.
// Exit codes: 0 success, 1 a job that failed (a file that cannot be read or written), 2 bad usage.
#pragma once

#include <iosfwd>

namespace ovaro {
class RunDistributor;
}

namespace ovaro::cli {

// With a distributor of more than one process (mpirun), an untraced compare shares its runs
// with the others; process 0 alone prints, and the other processes run no other command.
int run(int argc, const char* const* argv, std::ostream& out, std::ostream& err,
        RunDistributor* distributor = nullptr);

}  // namespace ovaro::cli
