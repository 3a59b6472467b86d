// Input: the answer of a server to an upload, made with the real request over loopback. An input that begins
// with 'l', 's', 'e' or 'c' is the body of a well-formed answer, which must be returned verbatim; any other
// input is the whole answer.

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "platform/url_request.h"
#include "tests/fuzz/loopback_server.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "usage/upload_rules.h"

namespace {

using fuzz::require;

struct Exchange {
  std::string answer;
  bool bodyIsKnown = false;
  std::optional<std::string> body = {};  // if known; nullopt for an incomplete answer
};

std::string inChunksOf(std::size_t size, std::string_view body) {
  std::string chunks;
  for (; !body.empty(); body.remove_prefix(std::min(size, body.size()))) {
    const std::string_view chunk = body.substr(0, size);
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, chunk.size(), 16).ptr;
    chunks.append(digits, end).append("\r\n").append(chunk).append("\r\n");
  }
  return chunks + "0\r\n\r\n";
}

Exchange exchangeOf(std::string_view input) {
  const std::string_view body = input.substr(std::min<std::size_t>(1, input.size()));
  const std::string ok = "HTTP/1.1 200 OK\r\n";
  const auto withLength = [&](std::size_t length) {
    return ok + "Content-Length: " + std::to_string(length) + "\r\n\r\n" + std::string(body);
  };
  switch (input.empty() ? '\0' : input.front()) {
    case 'l':
      return {withLength(body.size()), true, std::string(body)};
    case 's':
      return {withLength(body.size() + 1), true, std::nullopt};
    case 'e':
      return {ok + "Connection: close\r\n\r\n" + std::string(body), true, std::string(body)};
    case 'c':
      return {ok + "Transfer-Encoding: chunked\r\n\r\n" + inChunksOf(1 + body.size() / 3, body), true,
              std::string(body)};
    default:
      return {std::string(input)};
  }
}

// libcurl accepts the protocol name case-insensitively.
bool namesProtocol(std::string_view answer) {
  constexpr std::string_view name = "http/";
  const auto isSame = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; };
  return std::search(answer.begin(), answer.end(), name.begin(), name.end(), isSame) != answer.end();
}

// An empty line, with LF or CRLF, ends the header.
bool hasHead(std::string_view answer) {
  return namesProtocol(answer) &&
         (answer.find("\n\r") != std::string_view::npos || answer.find("\n\n") != std::string_view::npos);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::LoopbackServer server;
  const Exchange exchange = exchangeOf({reinterpret_cast<const char*>(data), size});
  server.setAnswer(exchange.answer);

  const std::string contents = "a day's records";
  const UploadForm form;
  platform::UrlRequest request = uploadRequest(server.origin(), form, contents);
  request.timeoutInterval = std::chrono::seconds(1);
  request.maximumReplySize = std::size_t{1} << 16;
  const auto reply = platform::sendSynchronousRequest(request);

  require(!reply || reply->size() <= request.maximumReplySize, "a reply is within the limit");
  require(!reply || hasHead(exchange.answer), "a reply has a complete head");
  if (exchange.bodyIsKnown && size <= request.maximumReplySize)
    require(reply == exchange.body, "a body is returned verbatim");
  return 0;
}
