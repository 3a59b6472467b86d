#include "tools/productserver/reply.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "tools/productserver/header_value.h"

namespace tools {
namespace {

constexpr std::string_view kReplyLineEnd = "\r\n";

bool isFramingHeader(std::string_view line) {
  constexpr std::array<std::string_view, 4> kNames = {"content-length", "transfer-encoding", "connection",
                                                      "keep-alive"};
  return std::find(kNames.begin(), kNames.end(), lowerCase(line.substr(0, line.find(':')))) != kNames.end();
}

std::string headOf(const Reply& reply, const std::string& framing) {
  return reply.head + framing + "\r\nConnection: close\r\n\r\n";
}

std::string compressed(std::string data) {
  constexpr int kGzipWindow = 15 + 16;
  constexpr int kMemoryLevel = 8;
  z_stream stream{};
  if (::deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
    return {};
  std::string result(::deflateBound(&stream, data.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(data.data());
  stream.avail_in = static_cast<uInt>(data.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  ::deflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  ::deflateEnd(&stream);
  return result;
}

}  // namespace

Reply parseReply(std::string_view written) {
  const std::size_t blankLine = written.find("\r\n\r\n");
  if (blankLine == written.npos) return textReply("400 Bad Request", "");
  Reply reply{.head = {}, .body = std::string(written.substr(blankLine + 4))};
  std::string_view head = written.substr(0, blankLine + kReplyLineEnd.size());
  while (!head.empty()) {
    const std::size_t end = head.find(kReplyLineEnd) + kReplyLineEnd.size();
    if (!isFramingHeader(head)) reply.head += head.substr(0, end);
    head.remove_prefix(end);
  }
  return reply;
}

Reply textReply(std::string_view status, std::string_view body) {
  return {.head = "HTTP/1.1 " + std::string(status) + "\r\nContent-Type: text/plain; charset=utf-8\r\n",
          .body = std::string(body)};
}

std::string headWithLength(const Reply& reply) {
  return headOf(reply, "Content-Length: " + std::to_string(reply.body.size()));
}

std::string headForChunks(const Reply& reply) {
  return headOf(reply, "Transfer-Encoding: chunked");
}

std::string chunk(std::string_view data) {
  std::array<char, 24> size{};
  std::snprintf(size.data(), size.size(), "%zx\r\n", data.size());
  return size.data() + std::string(data) + "\r\n";
}

Reply gzipped(const Reply& reply) {
  return {.head = reply.head + "Content-Encoding: gzip\r\n", .body = compressed(reply.body)};
}

}  // namespace tools
