// The batch tool's process: one program on its own, or one of the processes of an mpirun job
// that share a comparison's runs.
#pragma once

namespace ovaro::cli {

// Runs the command line. Started by mpirun (in a build with MPI), every process takes part:
// process 0 prints exactly what a single process prints, the others print nothing, and every
// process ends with process 0's exit code. Started on its own, it is the plain batch tool.
int runProcess(int argc, char** argv);

}  // namespace ovaro::cli
