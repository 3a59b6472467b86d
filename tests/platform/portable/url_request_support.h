#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "platform/url_request.h"
#include "tests/harness/servers/raw_http_server.h"

namespace test_support {

// What came of a request, and how long its caller was kept.
struct Outcome {
  std::optional<std::string> reply = {};
  std::chrono::milliseconds time = {};
};
void PrintTo(const Outcome& outcome, std::ostream* stream);
[[nodiscard]] Outcome outcomeOf(const platform::UrlRequest& request);

[[nodiscard]] platform::UrlRequest requestFor(const std::string& url);
[[nodiscard]] platform::UrlRequest postOf(const std::string& url, std::string_view body);
// The reply of a server with that script, to a plain request.
[[nodiscard]] std::optional<std::string> replyOf(RawHttpServer::Script script);

// `bytes` as gzip packs them.
[[nodiscard]] std::string gzipped(const std::string& bytes);
// A reply with `body` in chunks of `size` bytes.
[[nodiscard]] std::string chunkedReply(std::string_view body, std::size_t size,
                                       const std::string& headers = {});

}  // namespace test_support
