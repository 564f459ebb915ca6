#pragma once
// What a build did, in the words a person reads after it: the command line
// prints these lines, the add-in writes them to the log of its load.
#include <string>
#include <vector>

#include "workflow/build_report.h"

namespace sentrune {

// One line per thing done, in the order the steps did them.
std::vector<std::string> DescribeBuild(const BuildReport& report);

}  // namespace sentrune
