#pragma once

#include <cstdio>
#include <cstdlib>

namespace fuzz {

// What must hold whatever the input; a fuzzer takes the abort for a finding and keeps the input.
inline void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

}  // namespace fuzz
