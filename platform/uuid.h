#pragma once

#include <string>

namespace platform {

// Returns a new random UUID (RFC 4122, version 4) in its canonical form: 36 characters, upper-case
// hexadecimal digits in groups of 8-4-4-4-12 joined by hyphens. Never fails. Thread-safe.
[[nodiscard]] std::string createUuidString();

}  // namespace platform
