#pragma once

#include <httplib.h>

#include "tools/productserver/connection.h"
#include "tools/productserver/fault_list.h"
#include "tools/productserver/reply.h"
#include "tools/productserver/request_log.h"
#include "tools/productserver/stop_event.h"

namespace tools {

// Replacement name for the Content-Type header of forms. Hides forms from the HTTP library, whose own parser
// rejects forms that other servers accept.
constexpr const char* kFormTypeHeader = "Form-Type";

// The HTTP library's server with faults, and with a shutdown that does not wait for clients.
class HttpServer : public httplib::Server {
 public:
  HttpServer();

  // `log` receives a line for each request. Call before the server listens.
  void setLog(LogLine log);

  // Requests whose path begins with "/_" are exempt from faults.
  [[nodiscard]] FaultList& faults() { return faults_; }

  // Stops listening and ends all connections. Thread-safe.
  void end();

 private:
  bool process_and_close_socket(socket_t socket) override;
  // Returns false if the connection has ended.
  [[nodiscard]] bool serve(Connection& connection, bool last);
  void serveFaulty(Connection& connection, Fault fault);
  [[nodiscard]] Reply takeRequest(Connection& connection, Fault fault);

  StopEvent stop_;
  FaultList faults_;
  LogLine log_;
};

}  // namespace tools
