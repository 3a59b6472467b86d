#pragma once

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>
#include <QTimer>

namespace platform {

// Calls `changed` 100 ms after the last of these events: the user switches desktops or leaves the "show
// desktop" mode, or a window of this program moves to another desktop. By then the window manager has placed
// its windows. Main thread only. Does nothing on a display that is not X11.
class DesktopWatch : private QAbstractNativeEventFilter {
 public:
  explicit DesktopWatch(const std::function<void()>& changed);
  ~DesktopWatch() override;

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  QTimer settle_;
  std::uint32_t currentDesktop_ = 0;
  std::uint32_t showingDesktop_ = 0;
  std::uint32_t windowsDesktop_ = 0;
};

}  // namespace platform
