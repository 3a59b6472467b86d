#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

// Aborts unless `holds`. The fuzzer reports the abort as a finding and keeps the input.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace fuzz
