#pragma once

#include <cstdint>
#include <string_view>

// The one-byte code of the system's release that usage records carry: 64 (0x40) for anything before 10.10,
// one more for each release up to 68 (0x44), which stands for 10.13 and all that came after, every later
// major release included. The ceiling is meant: records keep their meaning.
[[nodiscard]] std::uint8_t osCodeFor(std::string_view versionText);

// The code of the running system. Any thread.
[[nodiscard]] std::uint8_t GetOSVersion();
