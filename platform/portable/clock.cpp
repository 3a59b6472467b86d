#include "platform/clock.h"

namespace platform {

std::tm currentLocalTime() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr) return {};
  return local;
}

void noticeTimeZone() {
  ::tzset();
}

}  // namespace platform
