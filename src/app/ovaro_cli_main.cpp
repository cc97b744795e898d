#include <iostream>

#include "app/cli.h"

int main(int argc, char** argv) {
  return ovaro::cli::run(argc, argv, std::cout, std::cerr);
}
