#pragma once

#include <string>
#include <string_view>

namespace test_support {

using namespace std::string_literals;

// "-ncdat" messages byte by byte (doc/usage_record_format.md).

// Returns the message with this command code, a transfer's if it is 0.
[[nodiscard]] inline std::string collectMessage(char command, std::string_view payload = {}) {
  return "-ncdat\0\0\0\0"s + command + "\0\0\0"s + std::string(payload);
}

// Returns the message that a device of this name was connected.
[[nodiscard]] inline std::string deviceMessage(std::string_view name = "My Pad") {
  return collectMessage(3, std::string(name) + '\0');
}

// One transfer of kind 2, of 4096 bytes, named "mp4".
inline const std::string kTransferMessage =
    "-ncdat\0\0\0\0\0\0\0\0\x01\0\0\0\x02\0\0\0\x00\x10\0\0\0\0\0\0mp4\0\0\0\0\0\0\0"s;

}  // namespace test_support
