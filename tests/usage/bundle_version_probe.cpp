#include <iostream>
#include <optional>
#include <string>

#include "usage/bundle_version.h"

// Prints the status of getBundleVersion and the version, which is "untouched" before; now and again for each
// line it is sent.
int main() {
  std::string line;
  do {
    std::optional<std::string> version = "untouched";
    const int status = getBundleVersion(version);
    std::cout << status << ' ' << version.value_or("(none)") << std::endl;
  } while (std::getline(std::cin, line));
}
