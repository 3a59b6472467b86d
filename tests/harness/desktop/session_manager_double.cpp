#include "tests/harness/desktop/session_manager_double.h"

#include <string_view>

namespace test_support {

bool SessionManagerDouble::start() {
  if (!LineProgram::start({TOVALIN_SESSION_MANAGER_DOUBLE})) return false;
  constexpr std::string_view beginning = "address ";
  const auto event = waitForEvent(std::string(beginning));
  address_ = event ? event->substr(beginning.size()) : "";
  return event.has_value();
}

bool SessionManagerDouble::save() {
  return ask("save").ok;
}

bool SessionManagerDouble::die() {
  return ask("die").ok;
}

bool SessionManagerDouble::cancel() {
  return ask("cancel").ok;
}

std::map<std::string, std::string> SessionManagerDouble::properties() {
  std::map<std::string, std::string> result;
  for (const std::string& line : ask("properties").lines) {
    const std::size_t mark = line.find('=');
    result.emplace(line.substr(0, mark), line.substr(mark + 1));
  }
  return result;
}

}  // namespace test_support
