#include "tests/harness/desktop/x_input.h"

#include <cstdint>
#include <vector>

#include "tests/harness/desktop/x_connection.h"
#include "tests/harness/processes/child_process.h"

namespace test_support {
namespace {

bool xdotool(const std::string& display, const std::vector<std::string>& arguments) {
  std::vector<std::string> command{"xdotool"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  ChildProcess tool;
  return tool.start(command, {.environment = {{"DISPLAY", display}}, .error = Redirection::null()}) &&
         tool.wait() == ExitStatus{.code = 0};
}

bool mouse(const std::string& display, int x, int y, const std::string& action, int button) {
  return xdotool(display,
                 {"mousemove", std::to_string(x), std::to_string(y), action, std::to_string(button)});
}

}  // namespace

bool moveMouse(const std::string& display, int x, int y) {
  return xdotool(display, {"mousemove", std::to_string(x), std::to_string(y)});
}

bool clickMouse(const std::string& display, int x, int y, int button) {
  return mouse(display, x, y, "click", button);
}

bool pressMouse(const std::string& display, int x, int y, int button) {
  return mouse(display, x, y, "mousedown", button);
}

bool releaseMouse(const std::string& display, int x, int y, int button) {
  return mouse(display, x, y, "mouseup", button);
}

bool pressKey(const std::string& display, const std::string& key) {
  return xdotool(display, {"key", key});
}

bool stopKeyRepeat(const std::string& display) {
  const XConnection connection(display);
  if (!connection.valid()) return false;
  const std::uint32_t off = XCB_AUTO_REPEAT_MODE_OFF;
  xcb_change_keyboard_control(connection.get(), XCB_KB_AUTO_REPEAT_MODE, &off);
  connection.synchronize();
  return true;
}

bool typeText(const std::string& display, const std::string& text) {
  return xdotool(display, {"type", text});
}

}  // namespace test_support
