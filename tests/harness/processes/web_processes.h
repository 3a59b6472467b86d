#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace web_view_test {

// Returns the ids of the running web view processes: the helper, the web engine and its sandbox programs.
// Each test runs in its own PID namespace and sees no others.
[[nodiscard]] std::vector<pid_t> webProcesses();
// Returns the ids of the processes named `name`, of which the kernel keeps 15 characters.
[[nodiscard]] std::vector<pid_t> processesNamed(const std::string& name);
[[nodiscard]] bool waitForNoWebProcess();
// Returns whether the caller has a child that ended and was not reaped.
[[nodiscard]] bool hasZombie();

// Returns every file and folder below `folder`, sorted.
[[nodiscard]] std::vector<std::string> filesBelow(const std::string& folder);

}  // namespace web_view_test
