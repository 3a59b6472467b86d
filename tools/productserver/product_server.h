#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "tools/productserver/http_server.h"
#include "tools/productserver/served_folder.h"
#include "tools/productserver/upload_folder.h"

namespace tools {

// The content of the server.
struct Offer {
  ServedFolder folder;
  std::unique_ptr<UploadFolder> uploads;  // nullptr: uploads are accepted but not stored
  std::optional<std::string> version;     // replaces the version in the folder
};

// Serves the files of one folder over HTTP on the loopback address only; accepts uploads and beacons.
class ProductServer {
 public:
  // `log` receives a line for each request, upload and beacon.
  ProductServer(Offer offer, const LogLine& log);

  // The faults of requests. Thread-safe.
  [[nodiscard]] FaultList& faults() { return server_.faults(); }

  // Binds to the port, 0 for any free one, and listens. Returns the port; nullopt if it is not available.
  [[nodiscard]] std::optional<int> bind(int port);

  // Serves requests until `stop`. Returns false if listening fails. Call once, after `bind`.
  [[nodiscard]] bool serve();

  // Ends `serve`. If `serve` has not begun yet, waits for it. Thread-safe.
  void stop();

 private:
  void addRoutes(const LogLine& log);

  Offer offer_;
  HttpServer server_;
  std::atomic<bool> ended_ = false;
};

}  // namespace tools
