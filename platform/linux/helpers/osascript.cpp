#include <optional>
#include <string>
#include <variant>

#include "platform/linux/helpers/activation_script.h"
#include "platform/linux/helpers/front_window.h"
#include "platform/linux/helpers/helper_program.h"
#include "platform/linux/helpers/x_desktop.h"

namespace {

constexpr char usage[] =
    "Usage: osascript -e SCRIPT\n"
    "\n"
    "Accepts one script, which activates the frontmost application again:\n"
    "\n"
    "tell application \"System Events\"\n"
    "set frontApp to name of first application whose frontmost is true\n"
    "tell application frontApp\n"
    "activate\n"
    "end tell\n"
    "end tell\n";

int activateFrontApplication() {
  const helpers::XDesktop desktop;
  if (const std::string problem = desktop.problem(); !problem.empty())
    return helpers::fail("osascript", problem);
  const std::optional<helpers::Window> front = helpers::frontWindow(desktop.screenState());
  if (!front) return helpers::fail("osascript", "no application is in front");
  if (!desktop.activate(*front)) return helpers::fail("osascript", "lost the connection to the X display");
  return helpers::Done;
}

}  // namespace

int main(int argc, char** argv) {
  helpers::prepareEnvironment();
  const auto request = helpers::parseScript({argv + 1, argv + argc});
  if (std::holds_alternative<helpers::ShowUsage>(request)) return helpers::showUsage(usage);
  if (const auto* refusal = std::get_if<helpers::Refusal>(&request)) {
    return helpers::refuse("osascript", refusal->reason);
  }
  return activateFrontApplication();
}
