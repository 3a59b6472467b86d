#pragma once

#include <map>
#include <string>

#include "tests/harness/processes/line_program.h"

namespace test_support {

// A fake X session manager in its own process, which listens on a socket below /tmp/.ICE-unix. Its commands
// apply to all programs in the session. Killing the process simulates the loss of the session manager.
//
// Events: "registered" (a program joined the session; its first save request follows), "saved yes" or "saved
// no" (the reply to a save request), "interact" (a program wants to ask the user something), "left" (a
// program closed its connection).
class SessionManagerDouble : public LineProgram {
 public:
  [[nodiscard]] bool start();

  // Returns the value for SESSION_MANAGER.
  [[nodiscard]] const std::string& address() const { return address_; }

  // Announces the end of the session: requests a save without user interaction.
  [[nodiscard]] bool save();
  // Ends the session.
  [[nodiscard]] bool die();
  // Cancels the announced end of the session.
  [[nodiscard]] bool cancel();

  // Returns the properties that programs have set: RestartStyleHint, Program, UserID and so on, numbers as
  // text.
  [[nodiscard]] std::map<std::string, std::string> properties();

 private:
  std::string address_;
};

}  // namespace test_support
