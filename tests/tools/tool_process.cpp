#include "tests/tools/tool_process.h"

#include <fcntl.h>
#include <unistd.h>

namespace tools_test {

std::string toolPath(const std::string& name) {
  return std::string(TOOLS_FOLDER) + "/" + name;
}

Finished runToEnd(const std::vector<std::string>& argv) {
  test_support::ChildOptions options;
  options.error = test_support::Redirection::pipe();
  test_support::ChildProcess child;
  if (!child.start(argv, options)) return {};
  Finished finished;
  finished.status = child.wait();
  finished.output = child.takeOutput();
  finished.error = child.takeErrorOutput();
  return finished;
}

bool writeInto(const std::string& path, std::string_view text) {
  const test_support::FileDescriptor file(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC));
  return file.valid() && ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

}  // namespace tools_test
