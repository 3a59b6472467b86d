#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/harness/processes/child_options.h"
#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// A started child and the near ends of its pipes; invalid for streams that are not piped.
struct Spawned {
  pid_t pid = -1;
  FileDescriptor input = {};
  FileDescriptor output = {};  // non-blocking
  FileDescriptor error = {};   // non-blocking
};

// Runs argv[0] with these options. On failure pid is -1 and errno is set. The caller reaps the child.
[[nodiscard]] Spawned spawn(const std::vector<std::string>& argv, const ChildOptions& options);

}  // namespace test_support
