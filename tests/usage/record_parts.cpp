#include "tests/usage/record_parts.h"

#include <cstdlib>
#include <mutex>

#include "platform/clock.h"
#include "usage/bundle_version.h"

namespace record_parts {

namespace {

std::mutex mutex;
std::tm shown{};

}  // namespace

std::optional<std::string> bundleVersion;

void setClock(const std::tm& now) {
  const std::lock_guard lock(mutex);
  shown = now;
}

std::tm clockAt(const char* now) {
  std::tm time{};
  const char* rest = ::strptime(now, "%Y-%m-%d %H:%M:%S", &time);
  if (rest == nullptr || *rest != '\0') std::abort();
  return time;
}

void setClock(const char* now) {
  setClock(clockAt(now));
}

}  // namespace record_parts

std::tm platform::currentLocalTime() {
  const std::lock_guard lock(record_parts::mutex);
  return record_parts::shown;
}

void platform::noticeTimeZone() {}

std::int32_t getBundleVersion(std::optional<std::string>& version) {
  if (!record_parts::bundleVersion) return -1;
  version = record_parts::bundleVersion;
  return 0;
}
