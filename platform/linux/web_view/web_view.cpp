#include "platform/web_view.h"

#include <unistd.h>

#include <optional>

#include "platform/bundle.h"
#include "platform/helper_folder.h"
#include "platform/linux/web_view/web_view_process.h"

namespace platform {
namespace {

constexpr const char* helperName = "/TovalinWebView";

// The copy outlives the bundle; where there is none, the bundle's own program serves.
std::optional<std::string> helperProgram() {
  const auto folder = helperFolder();
  if (folder && ::access((*folder + helperName).c_str(), X_OK) == 0) return *folder + helperName;
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return std::nullopt;
  return bundle->bundlePath() + "/Contents/Helpers" + helperName;
}

}  // namespace

struct WebView::Impl {
  WebViewProcess process;
};

WebView::WebView(Rect frame) : frame_(frame), impl_(std::make_unique<Impl>()) {}

WebView::~WebView() = default;

void WebView::loadRequest(const std::string& url) {
  if (const auto program = helperProgram()) impl_->process.send(*program, url);
}

}  // namespace platform
