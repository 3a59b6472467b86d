#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tools {

struct Options {
  bool help = false;
  bool json = false;
  bool lines = false;
  std::vector<std::string> files;  // "-": standard input
};

// Parses the command line. Returns nullopt after printing an error on standard error if it is invalid.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace tools
