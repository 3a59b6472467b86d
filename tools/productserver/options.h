#pragma once

#include <optional>
#include <string>

namespace tools {

struct Options {
  bool help = false;
  int port = 8090;  // 0: any free one
  std::string portFile;
  std::string folder;
};

// Reads the command line. Nothing when it is wrong, after saying on standard error how.
[[nodiscard]] std::optional<Options> parseOptions(int argc, char** argv);

[[nodiscard]] std::string helpText();

}  // namespace tools
