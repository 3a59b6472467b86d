#include "tools/productserver/fault_answer.h"

#include <algorithm>

namespace tools {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMebibyte = 1UL << 20U;

void send(Connection& connection, const Reply& reply) {
  if (connection.send(headWithLength(reply))) connection.send(reply.body);
}

void sendText(Connection& connection, std::string_view status, std::string_view body) {
  send(connection, textReply(status, body));
}

void stallWithinHead(Connection& connection, const Reply& reply) {
  const std::string head = headWithLength(reply);
  connection.send(head.substr(0, head.size() / 2));
  connection.waitForEnd();
}

void stallWithinBody(Connection& connection, const Reply& reply) {
  connection.send(headWithLength(reply) + reply.body.substr(0, reply.body.size() / 2));
  connection.waitForEnd();
}

void sendSlowly(Connection& connection, const Reply& reply) {
  constexpr std::size_t kSlowBytes = 20;
  const std::size_t slow = std::min(kSlowBytes, reply.body.size());
  connection.send(headWithLength(reply));
  for (std::size_t i = 0; i < slow; ++i) {
    if (!connection.pause(500ms) || !connection.send(reply.body.substr(i, 1))) return;
  }
  connection.send(reply.body.substr(slow));
}

// White space is valid after a property list or a text, so that only the size is wrong. The pause limits how
// fast a client without a size limit uses up memory.
void sendWithoutEnd(Connection& connection, const Reply& reply) {
  const std::string blanks = chunk(std::string(65536, ' '));
  bool there = connection.send(headForChunks(reply));
  if (!reply.body.empty()) there = there && connection.send(chunk(reply.body));
  while (there) there = connection.send(blanks) && connection.pause(2ms);
}

void sendHuge(Connection& connection, Reply reply) {
  reply.body.resize(std::max(reply.body.size(), 17 * kMebibyte), ' ');
  send(connection, reply);
}

void sendInChunks(Connection& connection, const Reply& reply) {
  constexpr std::size_t kSize = 7;
  connection.send(headForChunks(reply));
  for (std::size_t at = 0; at < reply.body.size(); at += kSize)
    connection.send(chunk(reply.body.substr(at, kSize)));
  connection.send(chunk(""));
}

void redirectToItself(Connection& connection, const std::string& target) {
  Reply reply = textReply("302 Found", "");
  reply.head += "Location: " + target + "\r\n";
  send(connection, reply);
}

}  // namespace

bool cutsRequest(Fault fault) {
  return fault == Fault::ResetBefore || fault == Fault::ResetWithinBody;
}

void cutRequest(Fault fault, Connection& connection) {
  const bool withoutBody = connection.ahead().starts_with("GET ") || connection.ahead().starts_with("HEAD ");
  const std::size_t bytesOfBody = fault == Fault::ResetWithinBody && !withoutBody ? 1 : 0;
  static_cast<void>(connection.readAhead("\r\n\r\n", bytesOfBody, 5s));
  connection.reset();
}

void answerWithFault(Fault fault, Connection& connection, const Reply& reply, const std::string& target) {
  switch (fault) {
    case Fault::RefuseStatus500:
      return sendText(connection, "500 Internal Server Error", "The server refuses this request.\n");
    case Fault::EmptyBody:
      return sendText(connection, "200 OK", "");
    case Fault::NotUtf8:
      return sendText(connection, "200 OK", "\xff\xff\xff\xff");
    case Fault::Overlong:
      return sendText(connection, "200 OK", "\xc0\xaf");
    case Fault::Surrogate:
      return sendText(connection, "200 OK", "\xed\xa0\x80");
    case Fault::ResetAfter:
    case Fault::ResetBefore:
    case Fault::ResetWithinBody:
      return connection.reset();
    case Fault::Drop:
      return;
    case Fault::Silent:
      return connection.waitForEnd();
    case Fault::StallHeader:
      return stallWithinHead(connection, reply);
    case Fault::StallBody:
      return stallWithinBody(connection, reply);
    case Fault::Slow:
      return sendSlowly(connection, reply);
    case Fault::Endless:
      return sendWithoutEnd(connection, reply);
    case Fault::Huge:
      return sendHuge(connection, reply);
    case Fault::RedirectLoop:
      return redirectToItself(connection, target);
    case Fault::Gzip:
      return send(connection, gzipped(reply));
    case Fault::Chunked:
      return sendInChunks(connection, reply);
  }
}

}  // namespace tools
