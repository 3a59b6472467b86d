#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/url_request.h"
#include "tests/harness/servers/raw_http_server.h"

namespace test_support {

// The reply to a request, if any, and the duration of the call.
struct Outcome {
  std::optional<std::string> reply = {};
  std::chrono::milliseconds time = {};
};
void PrintTo(const Outcome& outcome, std::ostream* stream);
[[nodiscard]] Outcome outcomeOf(const platform::UrlRequest& request);

[[nodiscard]] platform::UrlRequest requestFor(const std::string& url);
[[nodiscard]] platform::UrlRequest postOf(const std::string& url, std::string_view body);
// Returns the reply to a GET sent to a server that runs `script`.
[[nodiscard]] std::optional<std::string> replyOf(RawHttpServer::Script script);

// Returns `bytes` compressed by the gzip program. Throws std::runtime_error if it fails.
[[nodiscard]] std::string gzipped(const std::string& bytes);
// Returns an HTTP reply with `body` in chunks of `size` bytes.
[[nodiscard]] std::string chunkedReply(std::string_view body, std::size_t size,
                                       const std::string& headers = {});

}  // namespace test_support
