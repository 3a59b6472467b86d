#pragma once

#include <map>
#include <string>

#include "tests/harness/processes/line_program.h"

namespace test_support {

// An X session manager in a process of its own, spoken to over a socket below /tmp/.ICE-unix. Its commands go
// to all programs in the session; killing the process is the loss of the session manager.
//
// Events: "registered" (a program joined the session; it is then asked to save for the first time), "saved
// yes" or "saved no" (an answer to being asked to save), "interact" (a program wants to ask the user
// something), "left" (a program closed its connection).
class SessionManagerDouble : public LineProgram {
 public:
  [[nodiscard]] bool start();

  // What programs find it by: the value of SESSION_MANAGER.
  [[nodiscard]] const std::string& address() const { return address_; }

  // The session is about to end: programs are to save without asking the user.
  [[nodiscard]] bool save();
  // The session ends.
  [[nodiscard]] bool die();
  // The session does not end after all.
  [[nodiscard]] bool cancel();

  // What programs have said of themselves: RestartStyleHint, Program, UserID and so on, numbers as text.
  [[nodiscard]] std::map<std::string, std::string> properties();

 private:
  std::string address_;
};

}  // namespace test_support
