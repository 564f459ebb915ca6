#pragma once
// The options every command takes, before the command's name.
#include <string>
#include <vector>

namespace sentrune::cli {

struct GlobalOptions {
  std::string home;  // the add-in's folder; empty: the host's default
  bool yes = false;
  bool no = false;
  std::vector<std::string> drives;  // "X=DIR"
  std::string wineprefix;
  std::string reader = "portable";  // the type library source: portable or system
};

}  // namespace sentrune::cli
