#pragma once

#include <memory>
#include <string>
#include <thread>

#include "platform/file_descriptor.h"

struct wl_display;

namespace helpers {

// A Wayland display without output, because GTK and the web engine cannot start without a display. It offers
// one screen, a seat without devices, and no windows or input of other programs. Serves its clients on its
// own thread until the destructor. Must outlive the use of GTK.
class EmptyDisplay {
 public:
  // Creates the socket in $XDG_RUNTIME_DIR. On error, name() is empty.
  EmptyDisplay();
  ~EmptyDisplay();
  EmptyDisplay(const EmptyDisplay&) = delete;
  EmptyDisplay& operator=(const EmptyDisplay&) = delete;

  // Returns the value for $WAYLAND_DISPLAY.
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  struct Destroy {
    void operator()(wl_display* display) const;
  };

  std::unique_ptr<wl_display, Destroy> display_;
  platform::FileDescriptor stop_;
  std::string name_;
  std::thread thread_;
};

}  // namespace helpers
