#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tests/harness/desktop/x_connection.h"

namespace test_support {

// The parts of an X server's state that tests change and `makeFresh` does not restore.
struct DisplayState {
  std::map<std::string, std::string> rootProperties;  // bytes by name
  std::vector<xcb_window_t> windows;                  // of all clients, also unmapped ones
  std::array<std::uint8_t, 32> pressedKeys{};         // one bit per key code
  std::uint16_t buttonsAndModifiers = 0;
  std::string allowedHosts{};  // as the server encodes them

  bool operator==(const DisplayState&) const = default;
};

// Returns an empty state without a server.
[[nodiscard]] DisplayState stateOf(const XConnection& display);

// Turns on auto-repeat, moves the pointer to the middle and removes the id of the active window: openbox
// keeps that of a window that is gone, and another program may get the same id.
void makeFresh(const XConnection& display);

}  // namespace test_support
