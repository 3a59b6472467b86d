#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tools {

struct Options {
  bool help = false;
  bool json = false;
  bool lines = false;
  std::vector<std::string> files;  // "-": the standard input
};

// Reads the command line. Nothing when it is wrong, after saying on standard error how.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace tools
