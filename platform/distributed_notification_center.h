#pragma once

#include <functional>
#include <string_view>

namespace platform {

// Notices that the desktop posts to every program that asks for them. Main thread only.
class DistributedNotificationCenter {
 public:
  // The one center of the process; it lives as long as the process.
  [[nodiscard]] static DistributedNotificationCenter& defaultCenter();

  // Calls `observer` on the main thread, from the run loop, each time a notice of this name is posted, until
  // the process ends. "AppleInterfaceThemeChangedNotification" is posted when the desktop changes between
  // light and dark. A name that is never posted, or a desktop without such notices, is no error.
  void addObserver(std::string_view name, std::function<void()> observer);

 private:
  DistributedNotificationCenter() = default;
};

}  // namespace platform
