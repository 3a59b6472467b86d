#include "tools/productserver/http_server.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/productserver/fault_answer.h"
#include "tools/productserver/header_value.h"

namespace tools {
namespace {

constexpr const char* kFaultHeader = "Met-Fault";

struct RequestLine {
  std::string method;
  std::string target;
};

RequestLine requestLineIn(std::string_view head) {
  const std::string_view line = head.substr(0, head.find("\r\n"));
  const std::size_t blank = line.find(' ');
  if (blank == line.npos) return {};
  const std::string_view rest = line.substr(blank + 1);
  return {std::string(line.substr(0, blank)), std::string(rest.substr(0, rest.find(' ')))};
}

// Reads a request from the connection and captures the reply.
class ReplyCapture : public httplib::Stream {
 public:
  explicit ReplyCapture(Connection& connection) : connection_(connection) {}

  [[nodiscard]] const std::string& written() const { return written_; }

  [[nodiscard]] bool is_readable() const override { return connection_.is_readable(); }
  [[nodiscard]] bool is_writable() const override { return true; }
  ssize_t read(char* buffer, std::size_t size) override { return connection_.read(buffer, size); }
  ssize_t write(const char* data, std::size_t size) override {
    const std::string_view text(data, size);
    if (text.starts_with("HTTP/1.1 100")) return connection_.write(data, size);  // the client waits for it
    written_ += text;
    return static_cast<ssize_t>(size);
  }
  void get_remote_ip_and_port(std::string& ip, int& port) const override {
    connection_.get_remote_ip_and_port(ip, port);
  }
  void get_local_ip_and_port(std::string& ip, int& port) const override {
    connection_.get_local_ip_and_port(ip, port);
  }
  [[nodiscard]] socket_t socket() const override { return connection_.socket(); }

 private:
  Connection& connection_;
  std::string written_;
};

void prepare(httplib::Request& request) {
  request.headers.erase(kFaultHeader);
  request.headers.erase(kFormTypeHeader);
  const std::string type = request.get_header_value("Content-Type");
  if (lowerCase(type).starts_with("multipart/form-data")) {
    request.headers.erase("Content-Type");
    request.headers.emplace(kFormTypeHeader, type);
  }
  // Without either header there is no body, but the library would wait for one until the connection ends.
  if (!request.has_header("Content-Length") && !request.has_header("Transfer-Encoding"))
    request.headers.emplace("Content-Length", "0");
}

std::string outcomeOf(const httplib::Request& request, const httplib::Response& response) {
  if (request.has_header(kFaultHeader)) return "fault " + request.get_header_value(kFaultHeader);
  const std::size_t bytes = request.method == "HEAD" ? 0 : response.body.size();
  return std::to_string(response.status) + "  " + std::to_string(bytes) + " bytes";
}

}  // namespace

HttpServer::HttpServer() {
  constexpr std::size_t kThreads = 32;  // faults may block many clients at the same time
  set_keep_alive_max_count(100);
  set_keep_alive_timeout(5);
  new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
}

void HttpServer::setLog(LogLine log) {
  log_ = std::move(log);
  set_logger([this](const httplib::Request& request, const httplib::Response& response) {
    log_(requestLine(request.method, request.target, outcomeOf(request, response)));
  });
}

void HttpServer::end() {
  stop_.raise();
  stop();
}

bool HttpServer::process_and_close_socket(socket_t socket) {
  const std::chrono::seconds timeout(keep_alive_timeout_sec_);
  Connection connection(socket, stop_.descriptor());
  for (std::size_t left = keep_alive_max_count_; left > 0; --left) {
    if (!connection.readAhead("\n", 0, timeout) || !serve(connection, left == 1)) break;
  }
  connection.closeGently();
  return true;
}

bool HttpServer::serve(Connection& connection, bool last) {
  const std::string target = requestLineIn(connection.ahead()).target;
  const std::optional<Fault> fault = target.starts_with("/_") ? std::nullopt : faults_.take(target);
  if (fault) {
    serveFaulty(connection, *fault);
    return false;
  }
  bool closed = false;
  return process_request(connection, last, closed, prepare) && !closed;
}

void HttpServer::serveFaulty(Connection& connection, Fault fault) {
  const RequestLine request = requestLineIn(connection.ahead());
  if (!cutsRequest(fault)) {
    const Reply reply = takeRequest(connection, fault);
    return answerWithFault(fault, connection, reply, request.target);
  }
  log_(requestLine(request.method, request.target, "fault " + std::string(nameOf(fault))));
  cutRequest(fault, connection);
}

// Requests no compression, so that every fault can modify the plain answer.
Reply HttpServer::takeRequest(Connection& connection, Fault fault) {
  ReplyCapture capture(connection);
  bool closed = false;
  process_request(capture, true, closed, [fault](httplib::Request& request) {
    prepare(request);
    request.headers.erase("Accept-Encoding");
    request.headers.emplace(kFaultHeader, nameOf(fault));
  });
  return parseReply(capture.written());
}

}  // namespace tools
