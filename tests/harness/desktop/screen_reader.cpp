#include "tests/harness/desktop/screen_reader.h"

namespace test_support {

bool ScreenReader::start(const SessionBus& bus) {
  ChildOptions options;
  options.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}};
  return LineProgram::start({TOVALIN_SCREEN_READER}, options);
}

std::vector<std::string> ScreenReader::controls() {
  return ask("controls").lines;
}

}  // namespace test_support
