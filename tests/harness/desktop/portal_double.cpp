#include "tests/harness/desktop/portal_double.h"

#include <vector>

namespace test_support {

bool PortalDouble::start(const SessionBus& bus, const std::string& value) {
  std::vector<std::string> command{TOVALIN_PORTAL_DOUBLE};
  if (!value.empty()) command.insert(command.end(), {"--value", value});
  return LineProgram::start(command, {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}});
}

bool PortalDouble::set(const std::string& value) {
  return ask("set " + value).ok;
}

bool PortalDouble::setSilently(const std::string& value) {
  return ask("silent-set " + value).ok;
}

bool PortalDouble::setAbsent() {
  return ask("absent").ok;
}

bool PortalDouble::signalUnrelatedChange() {
  return ask("other").ok;
}

bool PortalDouble::delayAnswers(std::chrono::milliseconds delay) {
  return ask("delay " + std::to_string(delay.count())).ok;
}

}  // namespace test_support
