#pragma once

#include <string>

#include "tests/harness/processes/child_process.h"

namespace test_support {

// A D-Bus session bus of the test's own, gone with this object. It starts no service by itself, unless a
// folder of service files is given. Programs reach it through DBUS_SESSION_BUS_ADDRESS=address().
class SessionBus {
 public:
  // Returns when programs can connect; false when the daemon did not come up.
  [[nodiscard]] bool start(const std::string& serviceFolder = {});

  [[nodiscard]] const std::string& address() const { return address_; }

  // The loss of the bus: its programs find their connection broken.
  void stop() { daemon_ = ChildProcess(); }

 private:
  ChildProcess daemon_;
  std::string address_;
};

}  // namespace test_support
