#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

namespace tools {

// The items of a usage record file as they were read. Texts are bytes as they stand in the file and point
// into it.

struct Day {
  std::string_view date;  // YYYY-MM-DD
};

struct Identifier {
  std::string_view text;  // with its braces
};

struct OperatingSystem {
  std::uint8_t code = 0;
};

struct Version {
  std::string_view bundle;
  std::string_view fixed;
};

struct Start {
  Version version;
  std::string_view time;  // YYYY-MM-DD HH:MM:SS, as in the records below
};

struct End {
  std::string_view time;
};

struct DeviceEvent {
  unsigned dataCommand = 0;  // 3 or 4
  std::string_view time;
  std::string_view name;
};

struct Transfer {
  unsigned kind = 0;  // 1 or 2
  std::uint64_t size = 0;
  std::string_view name;
};

struct Item {
  std::size_t offset = 0;  // of its first byte in the file
  std::variant<Day, Identifier, OperatingSystem, Version, Start, End, DeviceEvent, Transfer> content;
};

// Where a file stops making sense: no whole file begins with more bytes than these first `offset` ones.
struct Damage {
  std::size_t offset = 0;
  std::string_view reason;  // a text that lasts
};

}  // namespace tools
