#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/productserver/fault.h"

namespace tools {

struct Options {
  bool help = false;
  int port = 8090;  // 0: any free one
  std::string portFile;
  std::string uploads;  // the folder that keeps uploads; empty: none
  std::optional<std::string> version;
  std::vector<std::pair<std::string, FaultOrder>> faults;  // the beginnings of paths
  std::string folder;
};

// Reads the command line. Nothing when it is wrong, after saying on standard error how.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

}  // namespace tools
