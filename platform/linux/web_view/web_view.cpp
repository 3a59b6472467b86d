#include "platform/web_view.h"

#include <unistd.h>

#include <optional>

#include "platform/helper_folder.h"
#include "platform/linux/web_view/web_view_process.h"

namespace platform {
namespace {

constexpr const char* helperName = "/TovalinWebView";

std::optional<std::string> helperProgram() {
  for (const std::string& folder : helperFolders()) {
    const std::string program = folder + helperName;
    if (::access(program.c_str(), X_OK) == 0) return program;
  }
  return std::nullopt;
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
