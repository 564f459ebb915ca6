#include "cli_main.h"
#include "posix_host.h"

int main(int argc, char** argv) {
  sentrune::cli::PosixHost host;
  return sentrune::cli::Main(host, argc, argv);
}
