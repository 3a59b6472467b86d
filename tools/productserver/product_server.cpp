#include "tools/productserver/product_server.h"

#include <sys/socket.h>

#include <chrono>
#include <thread>
#include <utility>

#include "tools/common/clock_text.h"
#include "tools/common/escaped_text.h"
#include "tools/productserver/content_type.h"

namespace tools {
namespace {

constexpr const char* kLoopback = "127.0.0.1";

using HandlerResponse = httplib::Server::HandlerResponse;

HandlerResponse answerWithFile(const ServedFolder& folder, const httplib::Request& request,
                               httplib::Response& response) {
  if (request.method != "GET" && request.method != "HEAD") return HandlerResponse::Unhandled;
  const std::optional<std::string> contents = folder.read(request.path);
  if (!contents) return HandlerResponse::Unhandled;
  response.set_content(*contents, contentType(request.path));
  return HandlerResponse::Handled;
}

std::string logText(const httplib::Request& request, const httplib::Response& response) {
  const std::size_t bytes = request.method == "HEAD" ? 0 : response.body.size();
  return clockText(std::chrono::system_clock::now()) + "  " + escapedText(request.method) + " " +
         escapedText(request.target) + "  " + std::to_string(response.status) + "  " + std::to_string(bytes) +
         " bytes";
}

// The library's own choice would let two servers share one port, each getting some of the requests.
void allowQuickRestart(socket_t socket) {
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

ProductServer::ProductServer(ServedFolder folder, std::function<void(const std::string& line)> logLine)
    : folder_(std::move(folder)) {
  server_.set_socket_options(allowQuickRestart);
  server_.set_keep_alive_timeout(1);  // an idle connection holds up the end for as long
  server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    return answerWithFile(folder_, request, response);
  });
  server_.set_logger(
      [log = std::move(logLine)](const httplib::Request& request, const httplib::Response& response) {
        log(logText(request, response));
      });
}

std::optional<int> ProductServer::bind(int port) {
  if (port != 0) return server_.bind_to_port(kLoopback, port) ? std::optional(port) : std::nullopt;
  const int taken = server_.bind_to_any_port(kLoopback);
  return taken > 0 ? std::optional(taken) : std::nullopt;
}

bool ProductServer::serve() {
  const bool good = server_.listen_after_bind();
  ended_ = true;
  return good;
}

void ProductServer::stop() {
  while (!server_.is_running() && !ended_) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  server_.stop();
}

}  // namespace tools
