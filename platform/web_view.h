#pragma once

#include "platform/geometry.h"

namespace platform {

// A web page that nobody sees. Main thread only.
class WebView {
 public:
  explicit WebView(Rect frame) : frame_(frame) {}

  [[nodiscard]] Rect frame() const { return frame_; }

 private:
  Rect frame_;
};

}  // namespace platform
