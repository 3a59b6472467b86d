#include "support/server_fetch.h"

#include "platform/url_request.h"
#include "usage/server_addresses.h"

using namespace std::chrono_literals;

std::optional<std::string> fetchFromServer(std::string_view path) {
  platform::UrlRequest request;
  request.url = productServer().append(path);
  request.cachePolicy = platform::UrlRequest::CachePolicy::ReloadIgnoringLocalCache;
  request.timeoutInterval = 3s;  // frozen: doc/compatibility.md
  return platform::sendSynchronousRequest(request);
}
