#include "tests/platform/portable/http/url_request_support.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/harness/processes/file_contents.h"

namespace test_support {

void PrintTo(const Outcome& outcome, std::ostream* stream) {
  *stream << (outcome.reply ? "\"" + *outcome.reply + "\"" : "no reply") << " after " << outcome.time.count()
          << " ms";
}

Outcome outcomeOf(const platform::UrlRequest& request) {
  const auto start = std::chrono::steady_clock::now();
  auto reply = platform::sendSynchronousRequest(request);
  const auto time = std::chrono::steady_clock::now() - start;
  return {std::move(reply), std::chrono::duration_cast<std::chrono::milliseconds>(time)};
}

platform::UrlRequest requestFor(const std::string& url) {
  platform::UrlRequest request;
  request.url = url;
  return request;
}

platform::UrlRequest postOf(const std::string& url, std::string_view body) {
  platform::UrlRequest request = requestFor(url);
  request.method = "POST";
  request.body = {body};
  return request;
}

std::optional<std::string> replyOf(RawHttpServer::Script script) {
  const RawHttpServer server(std::move(script));
  return platform::sendSynchronousRequest(requestFor(server.url()));
}

std::string gzipped(const std::string& bytes) {
  std::ofstream("/tmp/plain", std::ios::binary) << bytes;
  if (std::system("gzip -c /tmp/plain >/tmp/packed") != 0) throw std::runtime_error("gzip failed");
  return test_support::contentsOf("/tmp/packed");
}

std::string chunkedReply(std::string_view body, std::size_t size, const std::string& headers) {
  std::ostringstream reply;
  reply << "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n" << headers << "\r\n" << std::hex;
  for (std::string_view rest = body; !rest.empty(); rest.remove_prefix(std::min(size, rest.size()))) {
    const std::string_view chunk = rest.substr(0, size);
    reply << chunk.size() << "\r\n" << chunk << "\r\n";
  }
  reply << "0\r\n\r\n";
  return reply.str();
}

}  // namespace test_support
