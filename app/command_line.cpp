#include "app/command_line.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "usage/bundle_version.h"

namespace {

constexpr const char* helpText =
    "Usage: TovalinTray [--help | --version]\n"
    "\n"
    "The tray agent of Tovalin. It shows an icon in the panel; its menu switches automatic mounting of\n"
    "devices on and off, and \"Quit Tovalin\" ends the agent. The agent runs from inside the main\n"
    "application's bundle, once per user; a second start opens the menu of the running agent.\n"
    "\n"
    "  --help     show this text and end\n"
    "  --version  show the version and end\n";

std::string versionText() {
  std::optional<std::string> version;
  return getBundleVersion(version) == 0 ? *version : "(version unknown)";
}

// Returns 1 if standard output could not be written completely (ENOSPC, for example), else 0.
int statusOfOutput() {
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? 0 : 1;
}

// Some desktops append a process serial number to the command line. Frozen: doc/compatibility.md.
bool isAddedByDesktop(std::string_view argument) {
  return argument.starts_with("-psn_");
}

}  // namespace

std::optional<int> handleArguments(std::span<const std::string_view> all) {
  std::vector<std::string_view> arguments;
  std::ranges::remove_copy_if(all, std::back_inserter(arguments), isAddedByDesktop);
  if (arguments.empty()) return std::nullopt;
  if (arguments.size() == 1 && arguments[0] == "--help") {
    std::fputs(helpText, stdout);
    return statusOfOutput();
  }
  if (arguments.size() == 1 && arguments[0] == "--version") {
    std::printf("TovalinTray %s\n", versionText().c_str());
    return statusOfOutput();
  }
  const std::string_view wrong = arguments[arguments[0] == "--help" || arguments[0] == "--version" ? 1 : 0];
  std::fprintf(stderr, "TovalinTray: unexpected argument \"%.*s\"; see TovalinTray --help\n",
               static_cast<int>(wrong.size()), wrong.data());
  return 2;
}
