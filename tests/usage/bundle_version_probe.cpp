#include <cstdio>
#include <optional>
#include <string>

#include "usage/bundle_version.h"

// Prints the status of getBundleVersion and the version, which is "untouched" before.
int main() {
  std::optional<std::string> version = "untouched";
  const int status = getBundleVersion(version);
  std::printf("%d %s\n", status, version.value_or("(none)").c_str());
}
