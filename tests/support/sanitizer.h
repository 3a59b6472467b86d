#pragma once

namespace test_support {

// A sanitizer keeps what was freed, books of its own, and the address space, so that under one nothing can be
// said about memory, and none can be taken away.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool memoryCanBeMeasured = false;
#else
inline constexpr bool memoryCanBeMeasured = true;
#endif

inline constexpr const char* memoryIsTheSanitizers = "a sanitizer takes memory for itself";

}  // namespace test_support
