#include <fcntl.h>
#include <gtk/gtk.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <variant>

#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/web_view/descendants.h"
#include "platform/linux/helpers/web_view/display.h"
#include "platform/linux/helpers/web_view/environment.h"
#include "platform/linux/helpers/web_view/filter_proxy.h"
#include "platform/linux/helpers/web_view/options.h"
#include "platform/linux/helpers/web_view/sandbox.h"
#include "platform/linux/helpers/web_view/session.h"
#include "platform/linux/helpers/web_view/user_proxy.h"

namespace {

constexpr char program[] = "TovalinWebView";

constexpr char usage[] =
    "Usage: TovalinWebView [--idle-seconds NUMBER]\n"
    "\n"
    "Loads web pages into a view that is never shown. Reads their http and https addresses from standard\n"
    "input, one per line; each page replaces the previous one. Exits 15 seconds (or NUMBER) after the last\n"
    "page has been loaded, or 60 seconds after its address arrived if the load does not finish. After the\n"
    "end of the input, exits when the page has been loaded, at most 10 seconds later.\n";

// Moves the input to a close-on-exec descriptor, so that no child process keeps it open.
platform::FileDescriptor takeInput() {
  platform::FileDescriptor input(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  const platform::FileDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  ::dup2(nothing.get(), STDIN_FILENO);
  return input;
}

int failToLoad(const std::string& reason) {
  const std::string text = "no page is loaded: " + reason;
  ::openlog(program, 0, LOG_USER);
  ::syslog(LOG_ERR, "%s", text.c_str());
  return helpers::fail(program, text);
}

int serve(const helpers::ServeAddresses& request) {
  platform::FileDescriptor input = takeInput();
  const helpers::RuntimeFolder runtimeFolder;
  if (runtimeFolder.path().empty()) return failToLoad("cannot create the private folder");
  helpers::replaceEnvironment(runtimeFolder.path());
  if (!helpers::canLockInWebProcess(runtimeFolder.path()))
    return failToLoad("the web engine's sandbox is not available");
  const helpers::EmptyDisplay display;
  ::setenv("WAYLAND_DISPLAY", display.name().c_str(), 1);
  if (display.name().empty() || gtk_init_check(nullptr, nullptr) == FALSE)
    return failToLoad("cannot open the display");
  helpers::FilterProxy network(helpers::connectThroughUserProxy);
  if (network.address().empty()) return failToLoad("cannot open a socket on the loopback interface");
  helpers::adoptDescendants();
  helpers::Session(std::move(input), network, request.idle).run();
  helpers::endDescendants();
  return helpers::Done;
}

}  // namespace

int main(int argc, char** argv) {
  helpers::prepareEnvironment();
  const auto request = helpers::parseWebViewRequest({argv + 1, argv + argc});
  if (std::holds_alternative<helpers::ShowUsage>(request)) return helpers::showUsage(usage);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse(program, refusal->reason);
  }
  // Leaves the agent's working directory, so that its file system can be unmounted.
  if (::chdir("/") != 0) return helpers::fail(program, "cannot change to the root folder");
  return serve(std::get<helpers::ServeAddresses>(request));
}
