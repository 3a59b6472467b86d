#pragma once

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>
#include <QTimer>

namespace platform {

// Calls `changed` a moment after the user has turned to another desktop or back from the bare one, or a
// window of the program's has been moved to another desktop, by when the window manager has brought its
// windows there. Never on a display that is no X screen. Main thread.
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
