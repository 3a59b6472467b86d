#pragma once

#include <optional>
#include <string>

#include "tools/fleet/report.h"
#include "tools/fleet/simulation.h"

namespace fleet {

struct Options {
  bool help = false;
  bool json = false;
  std::string picture = {};  // a path, or empty
  std::string plan = {};     // a path, or empty
  Settings settings = {};
  Description description = {};
};

// Parses the command line. Returns nullopt after printing an error on standard error if it is invalid.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace fleet
