// Writes its arguments, environment, descriptors and signal state to the file that REPORT names, as fields
// that end with a NUL byte. The helpers start it in place of a real program.
#include <dirent.h>
#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

namespace {

std::string environmentEntry(const char* name) {
  const char* value = std::getenv(name);
  return std::string(name) + (value == nullptr ? " is unset" : std::string("=") + value);
}

void reportDescriptors(std::ostream& report) {
  DIR* folder = ::opendir("/proc/self/fd");
  while (const dirent* entry = ::readdir(folder)) {
    const std::string name = entry->d_name;
    if (name.starts_with('.') || name == std::to_string(::dirfd(folder))) continue;
    char target[4096] = {};
    const std::string path = "/proc/self/fd/" + name;
    if (::readlink(path.c_str(), target, sizeof target - 1) < 0) continue;
    report << "fd" << name << '=' << target << '\0';
  }
  ::closedir(folder);
}

// The calls fail for the two signals that the C library reserves.
void reportSignals(std::ostream& report) {
  sigset_t blocked;
  ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action {};
    const bool known = ::sigaction(number, nullptr, &action) == 0;
    if (known && action.sa_handler == SIG_IGN) report << "ignores " << number << '\0';
    if (known && ::sigismember(&blocked, number) == 1) report << "blocks " << number << '\0';
  }
}

}  // namespace

int main(int argc, char** argv) {
  const char* path = std::getenv("REPORT");
  if (path == nullptr) return 1;
  const std::string unfinished = std::string(path) + ".unfinished";
  // Collected before the report file is opened, so that its descriptor is not listed.
  std::ostringstream fields;
  reportDescriptors(fields);
  for (int i = 0; i < argc; ++i) fields << "argv=" << argv[i] << '\0';
  fields << environmentEntry("PATH") << '\0' << environmentEntry("TOVALIN_ORIGINAL_PATH") << '\0';
  fields << "leads session=" << (::getsid(0) == ::getpid()) << '\0';
  reportSignals(fields);
  std::ofstream(unfinished) << fields.str();
  return std::rename(unfinished.c_str(), path) == 0 ? 0 : 1;
}
