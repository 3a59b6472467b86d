#include <iostream>
#include <optional>
#include <string>

#include "usage/bundle_version.h"

// Prints the result of getBundleVersion() and the version, "untouched" by default, at the start and again for
// each line of input.
int main() {
  std::string line;
  do {
    std::optional<std::string> version = "untouched";
    const int status = getBundleVersion(version);
    std::cout << status << ' ' << version.value_or("(none)") << std::endl;
  } while (std::getline(std::cin, line));
}
