#include "platform/web_view.h"

#include "platform/macos/foundation/autorelease_pool.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/web_view/web_view_impl.h"
#include "platform/macos/windows/view_impl.h"

namespace platform {
namespace {

// Uses a non-persistent data store: pages leave nothing on disk.
WKWebView* makeView(Rect frame) {
  const Retained<WKWebViewConfiguration*> configuration([[WKWebViewConfiguration alloc] init]);
  [configuration.get() setWebsiteDataStore:[WKWebsiteDataStore nonPersistentDataStore]];
  return [[WKWebView alloc] initWithFrame:nativeRect(frame) configuration:configuration.get()];
}

}  // namespace

WebView::WebView(Rect frame) : frame_(frame), impl_(std::make_unique<Impl>()) {
  impl_->view = Retained<WKWebView*>(makeView(frame));
}

WebView::~WebView() = default;

void WebView::loadRequest(const std::string& url) {
  const AutoreleasePool pool;
  NSURL* address = [NSURL URLWithString:textOf(url)];
  if (address != nil) [impl_->view.get() loadRequest:[NSURLRequest requestWithURL:address]];
}

}  // namespace platform
