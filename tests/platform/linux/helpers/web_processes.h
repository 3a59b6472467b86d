#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace web_view_test {

// The running processes of the view's: the helper itself, the web engine's and those that lock it in. A test
// sees those of its own sandbox alone.
[[nodiscard]] std::vector<pid_t> webProcesses();
// Those of one name, of which the kernel keeps 15 letters.
[[nodiscard]] std::vector<pid_t> processesNamed(const std::string& name);
[[nodiscard]] bool waitForNoWebProcess();
// Whether the caller has a child that has ended and that nobody has reaped.
[[nodiscard]] bool hasZombie();

// Every file and folder below `folder`, sorted.
[[nodiscard]] std::vector<std::string> filesBelow(const std::string& folder);

}  // namespace web_view_test
