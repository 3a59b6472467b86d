#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr const char* kHelp =
    "Usage: tovalinupdate\n"
    "\n"
    "A stand-in for the updater. This is a development tool, not part of the agent.\n"
    "\n"
    "It prints the path from which it was opened, and exits.\n"
    "\n"
    "Exit status: 0, or 2 for a wrong command line.\n";

// Returns the path of the bundle that contains this program; of the program itself if there is none.
std::string openedFrom(const char* program) {
  std::error_code error;
  const std::filesystem::path own = std::filesystem::read_symlink("/proc/self/exe", error);
  const std::string path = error ? program : own.string();
  const std::size_t inside = path.rfind("/Contents/MacOS/");
  return path.substr(0, inside);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 2 && std::string_view(argv[1]) == "--help") return std::fputs(kHelp, stdout) < 0 ? 1 : 0;
  if (argc > 1) {
    std::fputs("tovalinupdate: takes no arguments\nsee tovalinupdate --help\n", stderr);
    return 2;
  }
  std::printf("the updater was opened from %s\n", openedFrom(argv[0]).c_str());
  return 0;
}
