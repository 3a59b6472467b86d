#pragma once

#include <functional>
#include <string>
#include <unordered_set>
#include <webkit2/webkit2.h>

#include "platform/linux/helpers/web_view/filter_proxy.h"
#include "platform/linux/helpers/web_view/glib_handles.h"

namespace helpers {

// A web page that is never shown. It runs its scripts and stores nothing beyond this process. Main thread
// only.
class Page {
 public:
  // Requires an initialised GTK. Pages reach the network only through `network`, which must outlive this
  // object. Calls `changed` when loading() may have changed.
  Page(FilterProxy& network, std::function<void()> changed);
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  // Replaces the current page or load.
  void load(const std::string& address);
  // Returns whether a requested page has not arrived yet, or the page or one of its scripts is loading
  // something.
  [[nodiscard]] bool loading() const;

 private:
  void request(const std::string& address);
  void retryRequest();
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
  std::string requested_;   // set until the page begins to arrive or fails
  bool hasLoaded_ = false;  // the web process has committed a load
  bool started_ = false;    // a load has started since the request
  bool mayRetry_ = false;
  bool answered_ = false;
  EventSource pulse_;
  std::unordered_set<WebKitWebResource*> resources_;
  ObjectPointer<WebKitWebContext> context_;
  ObjectPointer<WebKitWebView> view_;
};

}  // namespace helpers
