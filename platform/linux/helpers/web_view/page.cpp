#include "platform/linux/helpers/web_view/page.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/helpers/web_view/refusals.h"

namespace helpers {
namespace {

constexpr std::chrono::duration<guint, std::milli> pulse{3000};

Page& pageOf(gpointer self) {
  return *static_cast<Page*>(self);
}

void setProxy(WebKitWebsiteDataManager* manager, const std::string& address) {
  WebKitNetworkProxySettings* settings = webkit_network_proxy_settings_new(address.c_str(), nullptr);
  webkit_website_data_manager_set_network_proxy_settings(manager, WEBKIT_NETWORK_PROXY_MODE_CUSTOM, settings);
  webkit_network_proxy_settings_free(settings);
}

ObjectPointer<WebKitWebContext> makeContext(const std::string& proxy) {
  ObjectPointer<WebKitWebContext> context(webkit_web_context_new_ephemeral());
  webkit_web_context_set_sandbox_enabled(context.get(), TRUE);
  webkit_web_context_set_cache_model(context.get(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
  WebKitWebsiteDataManager* manager = webkit_web_context_get_website_data_manager(context.get());
  webkit_website_data_manager_set_tls_errors_policy(manager, WEBKIT_TLS_ERRORS_POLICY_FAIL);
  setProxy(manager, proxy);
  return context;
}

// Uses the engine's own URL parser, so that proxy and engine agree on the host.
std::optional<Endpoint> originOf(const std::string& address) {
  struct Unreference {
    void operator()(WebKitSecurityOrigin* origin) const { webkit_security_origin_unref(origin); }
  };
  const std::unique_ptr<WebKitSecurityOrigin, Unreference> origin(
      webkit_security_origin_new_for_uri(address.c_str()));
  const char* scheme = webkit_security_origin_get_protocol(origin.get());
  const char* host = webkit_security_origin_get_host(origin.get());
  if (scheme == nullptr || host == nullptr) return std::nullopt;
  const guint16 port = webkit_security_origin_get_port(origin.get());
  if (port != 0) return endpointOf(host, port);
  return endpointOf(host, std::string_view(scheme) == "https" ? 443 : 80);
}

// Disables features that have an effect only if the page is seen or heard.
ObjectPointer<WebKitSettings> makeSettings() {
  return ObjectPointer<WebKitSettings>(webkit_settings_new_with_settings(
      "hardware-acceleration-policy", WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER, "enable-webgl", FALSE,
      "enable-media", FALSE, "enable-webaudio", FALSE, "enable-media-stream", FALSE, "enable-mediasource",
      FALSE, "enable-webrtc", FALSE, "enable-encrypted-media", FALSE, "enable-fullscreen", FALSE,
      "enable-page-cache", FALSE, "enable-smooth-scrolling", FALSE, "allow-modal-dialogs", FALSE,
      "javascript-can-open-windows-automatically", FALSE, nullptr));
}

ObjectPointer<WebKitWebView> makeView(WebKitWebContext* context) {
  const ObjectPointer<WebKitSettings> settings = makeSettings();
  gpointer view = g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", context, "settings", settings.get(),
                               "is-ephemeral", TRUE, "is-muted", TRUE, nullptr);
  return ObjectPointer<WebKitWebView>(static_cast<WebKitWebView*>(g_object_ref_sink(view)));
}

}  // namespace

Page::Page(FilterProxy& network, std::function<void()> changed)
    : network_(network),
      changed_(std::move(changed)),
      context_(makeContext(network.address())),
      view_(makeView(context_.get())) {
  // Connected before refuseAllButPages, whose handler of "load-failed" stops the emission of that signal.
  watchProgress();
  refuseAllButPages(context_.get(), view_.get());
}

void Page::load(const std::string& address) {
  mayRetry_ = true;
  network_.setOrigin(originOf(address));
  request(address);
}

void Page::request(const std::string& address) {
  constexpr auto beat = [](gpointer self) -> gboolean {
    pageOf(self).checkPulse();
    return G_SOURCE_CONTINUE;
  };
  requested_ = address;
  started_ = false;
  answered_ = true;
  webkit_web_view_load_uri(view_.get(), address.c_str());
  pulse_.reset(g_timeout_add(pulse.count(), +beat, this));
}

void Page::retryRequest() {
  if (std::exchange(mayRetry_, false)) return request(std::string(requested_));
  requested_.clear();
  changed_();
}

// Works around two problems of the engine. First, it sometimes drops both of two requests that arrive while
// the web process starts, without a signal; the request is then repeated. Second, a page with an endless
// script also blocks the load of the next page. A web process that does not answer from one pulse to the next
// is therefore terminated, once for each address. A process that has not loaded any page yet is exempt: it is
// only slow to start.
void Page::checkPulse() {
  if (requested_.empty()) return pulse_.reset();
  if (webkit_web_view_is_loading(view_.get()) == FALSE) return retryRequest();
  if (!answered_ && mayRetry_ && hasLoaded_) return webkit_web_view_terminate_web_process(view_.get());
  constexpr auto answered = [](GObject*, GAsyncResult*, gpointer self) { pageOf(self).answered_ = true; };
  answered_ = false;
  webkit_web_view_evaluate_javascript(view_.get(), "0", -1, nullptr, nullptr, nullptr, answered, this);
}

bool Page::loading() const {
  return !requested_.empty() || webkit_web_view_is_loading(view_.get()) != FALSE || !resources_.empty();
}

void Page::watchProgress() {
  connect(view_.get(), "resource-load-started", resourceStarted, this);
  connect(view_.get(), "load-changed", loadChanged, this);
  connect(view_.get(), "load-failed", loadFailed, this);
  connect(view_.get(), "web-process-terminated", processEnded, this);
  constexpr auto loadingChanged = [](WebKitWebView*, GParamSpec*, gpointer self) { pageOf(self).changed_(); };
  connect(view_.get(), "notify::is-loading", +loadingChanged, this);
}

void Page::resourceStarted(WebKitWebView*, WebKitWebResource* resource, WebKitURIRequest*, gpointer self) {
  connect(resource, "finished", resourceFinished, self);
  pageOf(self).resources_.insert(resource);
  pageOf(self).changed_();
}

void Page::resourceFinished(WebKitWebResource* resource, gpointer self) {
  pageOf(self).resources_.erase(resource);
  pageOf(self).changed_();
}

// After the start of a load, the engine reports no more events for the resources of the previous page.
void Page::loadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self) {
  Page& page = pageOf(self);
  if (event == WEBKIT_LOAD_STARTED) {
    page.started_ = true;
    page.resources_.clear();
  }
  if (event != WEBKIT_LOAD_COMMITTED) return;
  page.hasLoaded_ = true;
  page.requestAnswered();
}

// A load that is replaced by the next one fails with "cancelled". Any other failure completes the request.
gboolean Page::loadFailed(WebKitWebView*, WebKitLoadEvent, const char*, GError* error, gpointer self) {
  const bool isCancelled =
      g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) != FALSE;
  if (!isCancelled) pageOf(self).requestAnswered();
  return FALSE;
}

// Events before the start of the load belong to the previous page.
void Page::requestAnswered() {
  if (!started_) return;
  requested_.clear();
  changed_();
}

// Repeats the pending request once, in a new web process.
void Page::processEnded(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self) {
  Page& page = pageOf(self);
  page.hasLoaded_ = false;
  page.resources_.clear();
  if (!page.requested_.empty()) page.retryRequest();
  page.changed_();
}

}  // namespace helpers
