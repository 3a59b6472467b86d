#pragma once

#import <WebKit/WebKit.h>

#include "platform/macos/foundation/retained.h"
#include "platform/web_view.h"

namespace platform {

struct WebView::Impl {
  Retained<WKWebView*> view;
};

}  // namespace platform
