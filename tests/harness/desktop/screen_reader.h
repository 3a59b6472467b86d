#pragma once

#include <string>
#include <vector>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace test_support {

// An accessibility bus, and what a screen reader reads on it through libatspi. Runs in its own process.
//
// Events: "active ROLE 'NAME': TEXTS" for a window that becomes active; "focus ROLE 'NAME' in ROLE 'NAME'"
// for an object that gets the input focus and the innermost window or dialog around it.
class ScreenReader : public LineProgram {
 public:
  // Programs started on `bus` afterwards offer their windows to assistive technology.
  [[nodiscard]] bool start(const SessionBus& bus);

  // Returns all visible objects as "ROLE 'NAME' STATES", where the states are "enabled", "focusable" and
  // "modal".
  [[nodiscard]] std::vector<std::string> controls();
};

}  // namespace test_support
