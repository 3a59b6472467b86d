#pragma once

#include <functional>
#include <string_view>

namespace platform {

// Receives notifications that the desktop posts to all programs. Main thread only.
class DistributedNotificationCenter {
 public:
  // Returns the only instance, which exists until the process ends.
  [[nodiscard]] static DistributedNotificationCenter& defaultCenter();

  // Registers `observer` until the process ends. The run loop calls it on the main thread each time a
  // notification of this name is posted. "AppleInterfaceThemeChangedNotification" is posted when the desktop
  // switches between the light and the dark appearance. An unknown name, or a desktop without such
  // notifications, is not an error.
  void addObserver(std::string_view name, std::function<void()> observer);

 private:
  DistributedNotificationCenter() = default;
};

}  // namespace platform
