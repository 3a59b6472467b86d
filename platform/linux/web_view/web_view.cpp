#include "platform/web_view.h"

#include "platform/bundle.h"
#include "platform/linux/web_view/web_view_process.h"

namespace platform {

struct WebView::Impl {
  WebViewProcess process;
};

WebView::WebView(Rect frame) : frame_(frame), impl_(std::make_unique<Impl>()) {}

WebView::~WebView() = default;

void WebView::loadRequest(const std::string& url) {
  const auto bundle = Bundle::mainBundle();
  if (bundle) impl_->process.send(bundle->bundlePath() + "/Contents/Helpers/TovalinWebView", url);
}

}  // namespace platform
