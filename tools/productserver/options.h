#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/productserver/fault.h"

namespace tools {

struct Options {
  bool help = false;
  int port = 8090;  // 0: any free port
  std::string portFile;
  std::string uploads;  // the folder for uploads; empty: none
  std::optional<std::string> version;
  std::vector<std::pair<std::string, FaultOrder>> faults;  // path prefixes with their faults
  std::string folder;
};

// Parses the command line. Returns nullopt after printing an error on standard error if it is invalid.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

}  // namespace tools
