#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <variant>

namespace tools {

// The items of a usage record file. Texts are the file's bytes, unchanged; the views point into the file.

struct Day {
  std::string_view date;  // YYYY-MM-DD
};

struct Identifier {
  std::string_view text;  // including the braces
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

// The offset of the first corrupt byte: no valid file begins with the first `offset` + 1 bytes.
struct Damage {
  std::size_t offset = 0;
  std::string_view reason;  // has static storage duration
};

}  // namespace tools
