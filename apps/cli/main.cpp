#include "cli_main.h"

int main(int argc, char** argv) { return sentrune::cli::Main(argc, argv); }
