#pragma once

#include <memory>
#include <string>

#include "platform/geometry.h"

namespace platform {

// A web page that nobody sees: it is fetched and runs its scripts, and nobody hears of the outcome. Main
// thread only.
class WebView {
 public:
  explicit WebView(Rect frame);
  ~WebView();
  WebView(const WebView&) = delete;
  WebView& operator=(const WebView&) = delete;

  [[nodiscard]] Rect frame() const { return frame_; }

  // Has the page at `url`, http or https and escaped, replace the one before, whether or not that one has
  // been loaded. Returns at once and without a word, also where there is nothing to load it with.
  void loadRequest(const std::string& url);

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  Rect frame_;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
