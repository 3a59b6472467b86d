#include "tests/harness/desktop/test_display.h"

#include <utility>

#include "tests/harness/desktop/window_manager.h"
#include "tests/harness/desktop/x_connection.h"

namespace test_support {
namespace {

std::vector<std::string> serverCommand(const DisplayOptions& options) {
  const std::string screen = std::to_string(options.width) + "x" + std::to_string(options.height) + "x24";
  // Without -noreset the server would forget everything whenever its last program leaves.
  std::vector<std::string> command{"Xvfb",     "-displayfd", "1", "-nolisten", "tcp",
                                   "-noreset", "-screen",    "0", screen};
  if (options.dpi) command.insert(command.end(), {"-dpi", std::to_string(*options.dpi)});
  return command;
}

// Where desktops put the user's choice of a resolution; toolkits look here before they ask the server.
void setFontResolution(const std::string& name, int dpi) {
  const XConnection display(name);
  const std::string resource = "Xft.dpi:\t" + std::to_string(dpi) + "\n";
  xcb_change_property(display.get(), XCB_PROP_MODE_REPLACE, display.root(), XCB_ATOM_RESOURCE_MANAGER,
                      XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(resource.size()), resource.c_str());
  display.synchronize();
}

std::string geometryText(const Monitor& monitor) {
  const auto length = [](int pixels) {
    const int millimetres = pixels * 254 / 960;
    return std::to_string(pixels) + "/" + std::to_string(millimetres);
  };
  return length(monitor.width) + "x" + length(monitor.height) + "+" + std::to_string(monitor.x) + "+" +
         std::to_string(monitor.y);
}

}  // namespace

bool TestDisplay::start(const DisplayOptions& options) {
  stop();
  if (!server_.start(serverCommand(options), {.error = Redirection::null()})) return false;
  const std::optional<std::string> number = server_.readLine();
  if (!number || number->empty()) return false;
  name_ = ":" + *number;
  if (options.dpi) setFontResolution(name_, *options.dpi);
  return divide(options.monitors) && (!options.windowManager || startWindowManager());
}

bool TestDisplay::divide(const std::vector<Monitor>& monitors) const {
  // The first takes the server's only output away from the monitor that covers the display.
  std::string output = "screen";
  for (const Monitor& monitor : monitors) {
    ChildProcess xrandr;
    const bool started =
        xrandr.start({"xrandr", "--display", name_, "--setmonitor", "at" + std::to_string(monitor.x),
                      geometryText(monitor), std::exchange(output, "none")});
    if (!started || xrandr.wait() != ExitStatus{.code = 0}) return false;
  }
  return true;
}

bool TestDisplay::startWindowManager() {
  const ChildOptions options{
      .environment = {{"DISPLAY", name_}}, .output = Redirection::null(), .error = Redirection::null()};
  return windowManager_.start({"openbox", "--sm-disable"}, options) && waitForWindowManager(name_);
}

void TestDisplay::stop() {
  server_ = ChildProcess();
  windowManager_ = ChildProcess();
}

bool TestDisplay::screenshot(const std::string& path) const {
  ChildProcess picture;
  return picture.start({"import", "-display", name_, "-window", "root", path},
                       {.error = Redirection::null()}) &&
         picture.wait() == ExitStatus{.code = 0};
}

}  // namespace test_support
