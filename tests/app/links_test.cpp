#include <gmock/gmock.h>

#include <string>
#include <string_view>
#include <vector>

#include "app/beacon.h"
#include "app/link_addresses.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/web_view.h"
#include "platform/workspace.h"
#include "usage/server_addresses.h"

using testing::ElementsAre;

namespace {

// The loads of the web view and the addresses opened on the desktop, in order.
std::vector<std::string>& visits() {
  static std::vector<std::string> all;
  return all;
}

}  // namespace

// Fakes: the real ones would start a helper and a browser.
namespace platform {

struct WebView::Impl {};

WebView::WebView(Rect frame) : frame_(frame) {}
WebView::~WebView() = default;

void WebView::loadRequest(const std::string& url) {
  visits().push_back("load " + url);
}

Workspace& Workspace::sharedWorkspace() {
  static Workspace workspace;
  return workspace;
}

void Workspace::openURL(const std::string& url) {
  visits().push_back("open " + url);
}

}  // namespace platform

namespace {

struct Link {
  const char* name;
  void (nimbatrayAppDelegate::*method)();
  const char* value;  // value of the beacon
  std::string page;
};

void PrintTo(const Link& link, std::ostream* stream) {
  *stream << link.name;
}

class Links : public testing::TestWithParam<Link> {
 protected:
  void SetUp() override { visits().clear(); }
  void choose() { (delegate_.*GetParam().method)(); }

  nimbatrayAppDelegate delegate_;
};

TEST_P(Links, SendsBeaconBeforeOpeningPage) {
  platform::WebView view({});
  delegate_.gaWebView = &view;
  choose();
  EXPECT_THAT(visits(), ElementsAre("load " + beaconAddress(productServer(), "clickaction", GetParam().value),
                                    "open " + GetParam().page));
}

TEST_P(Links, OpensPageWithoutWebView) {
  choose();
  EXPECT_THAT(visits(), ElementsAre("open " + GetParam().page));
}

INSTANTIATE_TEST_SUITE_P(
    All, Links,
    testing::Values(
        Link{"Like", &nimbatrayAppDelegate::secondsection_sub1, "Like.F", std::string(facebookPage)},
        Link{"Share", &nimbatrayAppDelegate::secondsection_sub2, "Share.F", sharePage(productServer())},
        Link{"Tweet", &nimbatrayAppDelegate::secondsection_sub3, "Share.T", tweetPage(productServer())},
        Link{"Visit", &nimbatrayAppDelegate::thirdsection_sub1, "Visit Site", productPage(productServer())},
        Link{"Review", &nimbatrayAppDelegate::thirdsection_sub2, "Review", reviewPage(productServer())}),
    [](const auto& link) { return link.param.name; });

}  // namespace
