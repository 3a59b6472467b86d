#include "tests/usage/record_parts.h"

#include <cstdlib>
#include <mutex>

#include "platform/clock.h"
#include "usage/bundle_version.h"

namespace record_parts {

namespace {

std::mutex mutex;
std::tm shown{};
std::optional<std::tm> inNewZone;

}  // namespace

std::optional<std::string> bundleVersion;

void setClock(const std::tm& now) {
  const std::lock_guard lock(mutex);
  shown = now;
  inNewZone.reset();
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

void changeZoneTo(const char* now) {
  const std::lock_guard lock(mutex);
  inNewZone = clockAt(now);
}

}  // namespace record_parts

std::tm platform::currentLocalTime() {
  const std::lock_guard lock(record_parts::mutex);
  return record_parts::shown;
}

void platform::noticeTimeZone() {
  const std::lock_guard lock(record_parts::mutex);
  record_parts::shown = record_parts::inNewZone.value_or(record_parts::shown);
}

std::int32_t getBundleVersion(std::optional<std::string>& version) {
  if (!record_parts::bundleVersion) return -1;
  version = record_parts::bundleVersion;
  return 0;
}
