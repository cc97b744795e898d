#include "app/cli_process.h"

int main(int argc, char** argv) {
  return ovaro::cli::runProcess(argc, argv);
}
