#pragma once

#include <cstdlib>

// Returns the device pixels per point of this run's screen.
[[nodiscard]] inline int screenScale() {
  const char* factor = std::getenv("QT_SCALE_FACTOR");
  return factor == nullptr ? 1 : std::atoi(factor);
}
