#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tools {

struct Options {
  bool help = false;
  std::vector<std::string> sends;  // if not empty, send these and exit
  std::optional<std::string> until;
  std::optional<std::chrono::milliseconds> timeout;
};

// Parses the command line. Returns nullopt after printing an error on standard error if it is invalid.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace tools
