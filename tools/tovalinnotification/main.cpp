#include <cstdio>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "tools/tovalinnotification/notice.h"

namespace {

constexpr const char* kHelp =
    "Usage: tovalinnotification -title TEXT -subtitle TEXT -message TEXT -closeLabel TEXT\n"
    "                           -actions TEXT -bundlepath FOLDER -timeout SECONDS\n"
    "\n"
    "A stand-in for the notification helper. This is a development tool, not part of the agent.\n"
    "\n"
    "It prints the notice that the helper would show, waits as long as the helper would show it, and exits.\n"
    "All options are needed, in any order.\n"
    "\n"
    "Exit status: 0 after the timeout, 2 wrong command line.\n";

int fail(const std::string& reason) {
  std::fprintf(stderr, "tovalinnotification: %s\nsee tovalinnotification --help\n", reason.c_str());
  return 2;
}

int show(const tools::Notice& notice) {
  std::fputs(tools::noticeText(notice).c_str(), stdout);
  std::fflush(stdout);
  std::this_thread::sleep_for(notice.timeout);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments == std::vector<std::string>{"--help"}) return std::fputs(kHelp, stdout) < 0 ? 1 : 0;
  const std::variant<tools::Notice, std::string> parsed = tools::parseNotice(arguments);
  if (const auto* notice = std::get_if<tools::Notice>(&parsed)) return show(*notice);
  return fail(*std::get_if<std::string>(&parsed));
}
