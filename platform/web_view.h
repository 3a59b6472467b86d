#pragma once

#include <memory>
#include <string>

#include "platform/geometry.h"

namespace platform {

// A web page that is loaded and runs its scripts without being shown. Load results are not reported. Main
// thread only.
class WebView {
 public:
  explicit WebView(Rect frame);
  ~WebView();
  WebView(const WebView&) = delete;
  WebView& operator=(const WebView&) = delete;

  [[nodiscard]] Rect frame() const { return frame_; }

  // Replaces the present page, loaded or not, by the page at `url`, a percent-encoded http or https address.
  // Returns at once. Reports no error, not even if the web view cannot be started.
  void loadRequest(const std::string& url);

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Rect frame_;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
