#pragma once

#include <cstdint>
#include <string_view>

// Returns the one-byte code of the system's release in usage records: 64 (0x40) for releases before 10.10,
// one more for each release up to 68 (0x44), which stands for 10.13 and everything later. New releases get no
// new code, so that the meaning of existing records does not change. Thread-safe.
[[nodiscard]] std::uint8_t osCodeFor(std::string_view versionText);

// Returns the code of the running system. Thread-safe.
[[nodiscard]] std::uint8_t GetOSVersion();
