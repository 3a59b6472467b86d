#include "tools/productserver/product_server.h"

#include <sys/socket.h>

#include <chrono>
#include <thread>
#include <utility>

#include "tools/common/escaped_text.h"
#include "tools/productserver/content_type.h"
#include "tools/productserver/fault_control.h"
#include "tools/productserver/upload_handler.h"
#include "tools/productserver/version_list.h"

namespace tools {
namespace {

constexpr const char* kLoopback = "127.0.0.1";
constexpr const char* kVersionPath = "/product/nimba/binary/tovalin_recent_version_info.xml";
constexpr const char* kBeaconPath = "/product/nimba/binary/beacon_seen";
constexpr const char* kUploadPath = R"(/product/nimba/userlog/postdata\.php)";
constexpr const char* kFaultPath = "/_control/fault";

using HandlerResponse = httplib::Server::HandlerResponse;

std::optional<std::string> contentsAt(const Offer& offer, const std::string& path) {
  if (offer.version && path == kVersionPath) return versionList(*offer.version);
  return offer.folder.read(path);
}

HandlerResponse answerWithFile(const Offer& offer, const httplib::Request& request,
                               httplib::Response& response) {
  if (request.method != "GET" && request.method != "HEAD") return HandlerResponse::Unhandled;
  const std::optional<std::string> contents = contentsAt(offer, request.path);
  if (!contents) return HandlerResponse::Unhandled;
  response.set_content(*contents, contentType(request.path));
  return HandlerResponse::Handled;
}

// The query is category=C&C=V.
std::string beaconText(const httplib::Request& request) {
  const std::string category = request.get_param_value("category");
  return "beacon category=" + escapedText(category) +
         " value=" + escapedText(request.get_param_value(category));
}

// Replaces the library's default, SO_REUSEPORT, with which two servers could share a port and each get some
// of the requests.
void allowQuickRestart(socket_t socket) {
  const int on = 1;
  ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

ProductServer::ProductServer(Offer offer, const LogLine& log) : offer_(std::move(offer)) {
  server_.set_socket_options(allowQuickRestart);
  // A repeated request must reach the server.
  server_.set_default_headers({{"Cache-Control", "no-store"}});
  server_.setLog(log);
  addRoutes(log);
}

void ProductServer::addRoutes(const LogLine& log) {
  server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    return answerWithFile(offer_, request, response);
  });
  server_.Get(kBeaconPath, [log](const httplib::Request& request, httplib::Response& response) {
    log(beaconText(request));
    response.status = 204;
  });
  server_.Post(kUploadPath, UploadHandler(offer_.uploads.get(), log));
  const auto control = [this](const httplib::Request& request, httplib::Response& response) {
    controlFaults(server_.faults(), request, response);
  };
  server_.Get(kFaultPath, control);
  server_.Post(kFaultPath, httplib::Server::Handler(control));
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
  server_.end();
}

}  // namespace tools
