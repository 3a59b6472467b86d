#pragma once

#include <chrono>
#include <string>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace test_support {

// A fake desktop portal with the color scheme setting: dark (1), light (2) or no preference (0). Runs in its
// own process. Values are texts: a plain number is the unsigned number that desktops send; "int 1", "string
// TEXT", "bool true", "double 1.5" and "list TEXT" are other types.
//
// Events: "read NAMESPACE KEY" for each Read.
class PortalDouble : public LineProgram {
 public:
  // Without a value the setting is absent, and Read replies with the portal's NotFound error.
  [[nodiscard]] bool start(const SessionBus& bus, const std::string& value = {});

  [[nodiscard]] bool set(const std::string& value);          // emits SettingChanged
  [[nodiscard]] bool setSilently(const std::string& value);  // emits no signal
  [[nodiscard]] bool setAbsent();                            // emits no signal
  [[nodiscard]] bool signalUnrelatedChange();
  // Delays the reply to each subsequent Read. Other calls and commands are not delayed.
  [[nodiscard]] bool delayAnswers(std::chrono::milliseconds delay);
};

}  // namespace test_support
