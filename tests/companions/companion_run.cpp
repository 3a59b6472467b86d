#include "tests/companions/companion_run.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace companions_test {

std::string builtBundle() {
  const char* root = std::getenv("TOVALIN_BUNDLE_ROOT");
  return std::string(root == nullptr ? "" : root) + "/Tovalin.app";
}

Finished runToEnd(const std::vector<std::string>& argv, const test_support::ChildOptions& options) {
  test_support::ChildOptions withError = options;
  withError.error = test_support::Redirection::pipe();
  test_support::ChildProcess child;
  if (!child.start(argv, withError)) return {};
  Finished finished;
  finished.status = child.wait();
  finished.output = child.takeOutput();
  finished.error = child.takeErrorOutput();
  return finished;
}

void writeScript(const std::string& path, std::string_view commands) {
  const std::filesystem::path program = path;
  std::filesystem::create_directories(program.parent_path());
  std::ofstream(program) << "#!/bin/sh\n" << commands << '\n';
  std::filesystem::permissions(program, std::filesystem::perms(0755));
}

}  // namespace companions_test
