#include "platform/url_request.h"

#include <curl/curl.h>

#include <exception>

#include "platform/portable/http/url_exchange.h"

namespace platform {
namespace {

bool isReady() {
  static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return ready;
}

}  // namespace

std::optional<std::string> sendSynchronousRequest(const UrlRequest& request) {
  const bool known = request.method == "POST" || (request.method == "GET" && request.body.empty());
  if (!known || !isReady()) return std::nullopt;
  try {
    return exchange(request);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace platform
