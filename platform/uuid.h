#pragma once

#include <string>

namespace platform {

// A fresh random UUID (RFC 4122, version 4) in its canonical text form: 36 characters, upper-case hexadecimal
// digits in groups of 8-4-4-4-12 joined by hyphens. Any thread; cannot fail.
[[nodiscard]] std::string createUuidString();

}  // namespace platform
