#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <webkit2/webkit2.h>

#include "platform/linux/helpers/web_view/filter_proxy.h"
#include "platform/linux/helpers/web_view/glib_handles.h"

namespace helpers {

// A web page that is never shown. It runs its scripts and keeps nothing beyond this process.
class Page {
 public:
  // The toolkit must have been initialised. Pages reach the network through `network` alone, which must
  // outlive this object. `changed` is called when loading() may have changed.
  Page(FilterProxy& network, std::function<void()> changed);
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  // Replaces whatever the page shows or loads.
  void load(const std::string& address);
  // Whether a page has been asked for and not come yet, or one of its scripts waits for a reply.
  [[nodiscard]] bool loading() const;

 private:
  void request(const std::string& address);
  void requestOnceMore();
  void requestAnswered();
  void checkPulse();
  void watchProgress();
  static void resourceStarted(WebKitWebView* view, WebKitWebResource* resource, WebKitURIRequest* request,
                              gpointer self);
  static void resourceFinished(WebKitWebResource* resource, gpointer self);
  static void loadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self);
  static gboolean loadFailed(WebKitWebView* view, WebKitLoadEvent event, const char* address, GError* error,
                             gpointer self);
  static void processEnded(WebKitWebView* view, WebKitWebProcessTerminationReason reason, gpointer self);

  FilterProxy& network_;
  std::function<void()> changed_;
  std::string requested_;   // until its page begins to come, or can't
  bool hasLoaded_ = false;  // the web process has come as far as a page
  bool started_ = false;    // a load has begun since it was requested
  bool mayStartOver_ = false;
  bool answered_ = false;
  EventSource pulse_;
  std::unordered_set<WebKitWebResource*> resources_;
  ObjectPointer<WebKitWebContext> context_;
  ObjectPointer<WebKitWebView> view_;
};

}  // namespace helpers
