#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tools {

struct Options {
  bool help = false;
  std::vector<std::string> sends;  // not empty: send these and end
  std::optional<std::string> until;
  std::optional<std::chrono::milliseconds> timeout;
};

// Reads the command line. Nothing when it is wrong, after saying on standard error how.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace tools
