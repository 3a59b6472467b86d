#pragma once

#include <memory>
#include <string>
#include <thread>

#include "platform/file_descriptor.h"

struct wl_display;

namespace helpers {

// A Wayland display with nothing behind it, for a toolkit and a web engine that can't start without one: one
// screen, a seat without devices, and no other program's windows or input. Serves its clients on a thread of
// its own for as long as this object lives, which must be longer than the toolkit is used.
class EmptyDisplay {
 public:
  // Puts the socket into $XDG_RUNTIME_DIR. name() is empty if that fails.
  EmptyDisplay();
  ~EmptyDisplay();
  EmptyDisplay(const EmptyDisplay&) = delete;
  EmptyDisplay& operator=(const EmptyDisplay&) = delete;

  // What $WAYLAND_DISPLAY is to be.
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
