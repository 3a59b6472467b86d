#pragma once

#include <string>
#include <string_view>

namespace test_support {

using namespace std::string_literals;

// "-ncdat" messages byte by byte (doc/usage_record_format.md).

// Returns the message that a device of this name was connected.
[[nodiscard]] inline std::string deviceMessage(std::string_view name = "My Pad") {
  return "-ncdat\0\0\0\0\x03\0\0\0"s + std::string(name) + '\0';
}

// One transfer of kind 2, of 4096 bytes, named "mp4".
inline const std::string kTransferMessage =
    "-ncdat\0\0\0\0\0\0\0\0\x01\0\0\0\x02\0\0\0\x00\x10\0\0\0\0\0\0mp4\0\0\0\0\0\0\0"s;

}  // namespace test_support
