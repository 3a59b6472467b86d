#pragma once

#include <string>
#include <string_view>

namespace tools {

// An HTTP answer.
struct Reply {
  std::string head;  // status line and headers, without those for the framing of the body
  std::string body;
};

// Parses an answer written by the HTTP library.
[[nodiscard]] Reply parseReply(std::string_view written);

// Returns a plain-text answer with a status such as "200 OK".
[[nodiscard]] Reply textReply(std::string_view status, std::string_view body);

// Return the complete head, including the blank line, of the last answer on a connection.
[[nodiscard]] std::string headWithLength(const Reply& reply);
[[nodiscard]] std::string headForChunks(const Reply& reply);

[[nodiscard]] std::string chunk(std::string_view data);

// Returns the answer with a gzip-compressed body.
[[nodiscard]] Reply gzipped(const Reply& reply);

}  // namespace tools
