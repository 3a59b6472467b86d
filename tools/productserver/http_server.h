#pragma once

#include <httplib.h>

#include "tools/productserver/connection.h"
#include "tools/productserver/fault_list.h"
#include "tools/productserver/reply.h"
#include "tools/productserver/request_log.h"
#include "tools/productserver/stop_event.h"

namespace tools {

// Under this header a request keeps the type of its body where the HTTP library would take a form apart by
// itself: its parser refuses forms that others take.
constexpr const char* kFormTypeHeader = "Form-Type";

// The HTTP library's server, whose requests can be met by faults, and whose end waits for no client.
class HttpServer : public httplib::Server {
 public:
  HttpServer();

  // Gets a line for each request. To be called before the server listens.
  void setLog(LogLine log);

  // Requests whose path begins with "/_" meet no fault.
  [[nodiscard]] FaultList& faults() { return faults_; }

  // Ends listening and all connections; any thread.
  void end();

 private:
  bool process_and_close_socket(socket_t socket) override;
  // False when the connection is over.
  [[nodiscard]] bool serve(Connection& connection, bool last);
  void serveFaulty(Connection& connection, Fault fault);
  [[nodiscard]] Reply takeRequest(Connection& connection, Fault fault);

  StopEvent stop_;
  FaultList faults_;
  LogLine log_;
};

}  // namespace tools
