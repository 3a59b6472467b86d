#include <fcntl.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <variant>

#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/web_view/descendants.h"
#include "platform/linux/helpers/web_view/environment.h"
#include "platform/linux/helpers/web_view/options.h"
#include "platform/linux/helpers/web_view/sandbox.h"
#include "platform/linux/helpers/web_view/session.h"

namespace {

constexpr char usage[] =
    "Usage: TovalinWebView [--idle-seconds NUMBER]\n"
    "\n"
    "Loads the pages whose addresses, http or https, come in on the standard input, one a line, into a view\n"
    "that is never shown. A new page replaces the one before. Ends when no address has come for 60 seconds, "
    "or\n"
    "for NUMBER; at the end of the input once the page has been loaded, and 10 seconds after it at the "
    "latest.\n";

// Nothing that is started later may hold the input open.
platform::FileDescriptor takeInput() {
  platform::FileDescriptor input(::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
  const platform::FileDescriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  ::dup2(nothing.get(), STDIN_FILENO);
  return input;
}

int serve(const helpers::ServeAddresses& request) {
  platform::FileDescriptor input = takeInput();
  helpers::RuntimeFolder runtimeFolder;
  helpers::leaveUsersThingsAlone(runtimeFolder.path());
  const bool lockedIn = helpers::canLockInWebProcess(runtimeFolder.path());
  if (gtk_init_check(nullptr, nullptr) == FALSE) {
    return helpers::fail("TovalinWebView", "there is no X display");
  }
  helpers::adoptDescendants();
  helpers::Session(std::move(input), lockedIn, request.idle).run();
  helpers::endDescendants();
  return helpers::Done;
}

}  // namespace

int main(int argc, char** argv) {
  helpers::takeUsersEnvironment();
  const auto request = helpers::parseWebViewRequest({argv + 1, argv + argc});
  if (std::holds_alternative<helpers::ShowUsage>(request)) return helpers::showUsage(usage);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse("TovalinWebView", refusal->reason);
  }
  // The folder in which the agent was started stays free to go.
  if (::chdir("/") != 0) return helpers::fail("TovalinWebView", "there is no root folder");
  return serve(std::get<helpers::ServeAddresses>(request));
}
