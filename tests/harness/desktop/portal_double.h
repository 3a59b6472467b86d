#pragma once

#include <chrono>
#include <string>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/processes/line_program.h"

namespace test_support {

// A desktop portal with the setting that says whether the desktop is dark (1), light (2) or neither (0), in a
// process of its own. Values are texts: a plain number is the unsigned one that desktops send; "int 1",
// "string TEXT", "bool true", "double 1.5" and "list TEXT" are other types.
//
// Events: "read NAMESPACE KEY" for each Read.
class PortalDouble : public LineProgram {
 public:
  // Without a value the setting is absent, and Read answers with the portal's NotFound error.
  [[nodiscard]] bool start(const SessionBus& bus, const std::string& value = {});

  [[nodiscard]] bool set(const std::string& value);          // and tells the change
  [[nodiscard]] bool setSilently(const std::string& value);  // tells nobody
  [[nodiscard]] bool setAbsent();                            // tells nobody
  [[nodiscard]] bool tellUnrelatedChange();
  // How long each Read from now on waits for its answer; other calls and commands go on meanwhile.
  [[nodiscard]] bool delayAnswers(std::chrono::milliseconds delay);
};

}  // namespace test_support
