#pragma once

#include <optional>
#include <string>

#include "tools/fleet/report.h"
#include "tools/fleet/simulation.h"

namespace fleet {

struct Options {
  bool help = false;
  bool json = false;
  std::string picture = {};  // a path; empty: none
  std::string plan = {};     // a path; empty: none
  Settings settings = {};
  Description description = {};
};

// Reads the command line. Returns nullopt if it is wrong, after saying on standard error how.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace fleet
