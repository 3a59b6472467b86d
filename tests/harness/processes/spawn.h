#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/harness/processes/child_options.h"
#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// A child just started and the near ends of its pipes; invalid where a stream is not piped.
struct Spawned {
  pid_t pid = -1;
  FileDescriptor input = {};
  FileDescriptor output = {};  // not blocking
  FileDescriptor error = {};   // not blocking
};

// Runs argv[0] with these options. On failure pid is -1 and errno says why. The caller reaps it.
[[nodiscard]] Spawned spawn(const std::vector<std::string>& argv, const ChildOptions& options);

}  // namespace test_support
