#pragma once

#include <string>

#include "tests/harness/processes/child_process.h"

namespace test_support {

// A private D-Bus session bus, stopped by the destructor. It activates services only from `serviceFolder`.
// Programs connect to it through DBUS_SESSION_BUS_ADDRESS=address().
class SessionBus {
 public:
  // Returns once programs can connect; false if the daemon did not start.
  [[nodiscard]] bool start(const std::string& serviceFolder = {});

  [[nodiscard]] const std::string& address() const { return address_; }

  // Kills the daemon: clients lose their connection.
  void stop() { daemon_ = ChildProcess(); }

 private:
  ChildProcess daemon_;
  std::string address_;
};

}  // namespace test_support
