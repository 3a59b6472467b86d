#include "tests/harness/processes/web_processes.h"

#include <sys/wait.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>

#include "tests/harness/processes/wait_until.h"

namespace web_view_test {
namespace {

namespace fs = std::filesystem;

// Name and state from /proc/PID/stat: "PID (NAME) STATE ...".
struct Process {
  std::string name;
  char state = 'Z';
};

Process describe(const fs::path& folder) {
  std::ifstream file(folder / "stat");
  std::string text;
  std::getline(file, text);  // fails without throwing if the process has ended
  const std::size_t begin = text.find('(');
  const std::size_t end = text.rfind(") ");
  if (begin == std::string::npos || end == std::string::npos) return {};
  return {text.substr(begin + 1, end - begin - 1), text[end + 2]};
}

std::vector<pid_t> processesThat(const std::function<bool(const std::string&)>& fits) {
  std::vector<pid_t> found;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const std::string id = entry.path().filename();
    if (id.find_first_not_of("0123456789") != std::string::npos) continue;
    const Process process = describe(entry.path());
    if (process.state != 'Z' && fits(process.name)) found.push_back(std::stoi(id));
  }
  return found;
}

}  // namespace

std::vector<pid_t> webProcesses() {
  return processesThat([](const std::string& name) {
    return name.starts_with("WebKit") || name.starts_with("TovalinWebView") || name == "bwrap" ||
           name.starts_with("xdg-dbus-proxy");
  });
}

std::vector<pid_t> processesNamed(const std::string& name) {
  return processesThat([&](const std::string& other) { return other == name; });
}

bool waitForNoWebProcess() {
  return test_support::waitUntil([] { return webProcesses().empty(); });
}

bool hasZombie() {
  siginfo_t ended{};
  return ::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0;
}

std::vector<std::string> filesBelow(const std::string& folder) {
  std::vector<std::string> files;
  std::error_code gone;
  for (fs::recursive_directory_iterator entry(folder, gone), end; !gone && entry != end;
       entry.increment(gone)) {
    files.push_back(entry->path());
  }
  std::ranges::sort(files);
  return files;
}

}  // namespace web_view_test
