#include "app/beacon.h"
#include "app/nimbatrayAppDelegate.h"
#include "platform/web_view.h"
#include "usage/server_addresses.h"

// Categories and values are frozen: doc/compatibility.md.
void nimbatrayAppDelegate::notificateGA(const std::string& category, const std::string& value) {
  platform::WebView* view = gaWebView;
  if (view != nullptr) view->loadRequest(beaconAddress(productServer(), category, value));
}
