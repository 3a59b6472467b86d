#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace platform {

// One HTTP request and how long to wait for its reply.
struct UrlRequest {
  enum class CachePolicy {
    UseProtocol,               // what HTTP allows
    ReloadIgnoringLocalCache,  // the reply comes from the server, never from a store on the way
  };

  std::string url = {};                   // http or https
  std::string method = "GET";             // or "POST"
  std::vector<std::string> headers = {};  // "Name: value"
  // Of a POST: the pieces are sent one after the other, not copied. They must outlive the call.
  std::vector<std::span<const char>> body = {};
  CachePolicy cachePolicy = CachePolicy::UseProtocol;
  // How long nothing may come or go, from the look-up of the name to the last byte of the reply. A slow
  // transfer that lives may take longer.
  std::chrono::milliseconds timeoutInterval = std::chrono::seconds(60);
  // Redirects are followed to these schemes only, written as in "http,https".
  std::string redirectSchemes = "http,https";
  // A reply that is longer, as received or decoded, counts as none, so that no server can fill the memory.
  std::size_t maximumReplySize = std::size_t{16} << 20;
};

// Sends the request, waits, and returns the body of the reply, whatever its status code; nothing when no
// whole reply came in time, or no request can be made of what is asked. A body in gzip or deflate is decoded;
// one in another coding, or not in the one that the server names, is returned as received. Blocks its caller;
// any thread, several at a time. Proxies are those that the environment names.
[[nodiscard]] std::optional<std::string> sendSynchronousRequest(const UrlRequest& request);

}  // namespace platform
