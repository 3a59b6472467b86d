#pragma once

namespace test_support {

// The sanitizers manage memory themselves: they retain freed memory and reserve address space that a test
// would measure or limit.
#ifdef __SANITIZE_ADDRESS__
inline constexpr bool isAddressSanitized = true;
#else
inline constexpr bool isAddressSanitized = false;
#endif
#ifdef __SANITIZE_THREAD__
inline constexpr bool isThreadSanitized = true;
#else
inline constexpr bool isThreadSanitized = false;
#endif

inline constexpr const char* memoryIsTheSanitizers = "a sanitizer takes memory for itself";

}  // namespace test_support
