#pragma once

#include <string>
#include <string_view>

namespace tools {

// An answer in pieces.
struct Reply {
  std::string head;  // status line and header lines, without those that tell how the body is framed
  std::string body;
};

// Takes apart what the HTTP library has written.
[[nodiscard]] Reply parseReply(std::string_view written);

// A line of text with its status, as in "200 OK".
[[nodiscard]] Reply textReply(std::string_view status, std::string_view body);

// The whole head, blank line included, of an answer after which the connection ends.
[[nodiscard]] std::string headWithLength(const Reply& reply);
[[nodiscard]] std::string headForChunks(const Reply& reply);

[[nodiscard]] std::string chunk(std::string_view data);

// The same answer with its body compressed.
[[nodiscard]] Reply gzipped(const Reply& reply);

}  // namespace tools
