#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace platform {

// One HTTP request and its limits.
struct UrlRequest {
  enum class CachePolicy {
    UseProtocol,               // as HTTP allows
    ReloadIgnoringLocalCache,  // the origin server answers, never a cache on the way
  };

  std::string url = {};                   // http or https
  std::string method = "GET";             // or "POST"
  std::vector<std::string> headers = {};  // "Name: value"
  // The body of a POST, sent in this order. The pieces are not copied and must outlive the call.
  std::vector<std::span<const char>> body = {};
  CachePolicy cachePolicy = CachePolicy::UseProtocol;
  // The maximum time without any progress, from name resolution to the last byte of the reply. A slow
  // transfer that makes progress may take longer.
  std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60);
  // The schemes to which redirects are followed, as in "http,https".
  std::string redirectSchemes = "http,https";
  // A longer reply, as received or decoded, counts as a failure. Bounds the memory that a server can make the
  // process use.
  std::size_t maximumReplySize = std::size_t{16} << 20;
};

// Sends the request and blocks until the reply is complete. Returns the body of the reply, whatever its
// status code. Returns nullopt if no complete reply arrives in time or if the request is invalid. Decodes
// gzip and deflate; a body in another coding, or not in the coding that the server names, is returned as
// received. Uses the proxies that the environment names. Thread-safe.
[[nodiscard]] std::optional<std::string> sendSynchronousRequest(const UrlRequest& request);

}  // namespace platform
