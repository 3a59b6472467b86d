#pragma once

#include <httplib.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "tools/productserver/served_folder.h"

namespace tools {

// Serves the files of one folder over HTTP on the loopback address alone.
class ProductServer {
 public:
  // `logLine` gets a line for each request, on the server's own threads, several at a time.
  ProductServer(ServedFolder folder, std::function<void(const std::string& line)> logLine);

  // Takes the port, 0 for any free one, and listens; returns the port taken, nothing when it can't be had.
  [[nodiscard]] std::optional<int> bind(int port);

  // Answers requests until `stop`, or until listening fails: then false. To be called once, after `bind`.
  [[nodiscard]] bool serve();

  // Ends `serve`; any thread, also before `serve` has begun, for which it then waits.
  void stop();

 private:
  httplib::Server server_;
  ServedFolder folder_;
  std::atomic<bool> ended_ = false;
};

}  // namespace tools
