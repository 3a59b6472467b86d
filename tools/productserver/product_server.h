#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>

#include "tools/productserver/http_server.h"
#include "tools/productserver/served_folder.h"
#include "tools/productserver/upload_folder.h"

namespace tools {

// What the server has to offer.
struct Offer {
  ServedFolder folder;
  std::unique_ptr<UploadFolder> uploads;  // null: uploads are taken, but not kept
  std::optional<std::string> version;     // told instead of the one in the folder
};

// Serves the files of one folder over HTTP on the loopback address alone, takes uploads and beacons.
class ProductServer {
 public:
  // `log` gets a line for each request, upload and beacon.
  ProductServer(Offer offer, const LogLine& log);

  // Which requests go wrong; any thread, any time.
  [[nodiscard]] FaultList& faults() { return server_.faults(); }

  // Takes the port, 0 for any free one, and listens; returns the port taken, nothing when it can't be had.
  [[nodiscard]] std::optional<int> bind(int port);

  // Answers requests until `stop`, or until listening fails: then false. To be called once, after `bind`.
  [[nodiscard]] bool serve();

  // Ends `serve`; any thread, also before `serve` has begun, for which it then waits.
  void stop();

 private:
  void addRoutes(const LogLine& log);

  Offer offer_;
  HttpServer server_;
  std::atomic<bool> ended_ = false;
};

}  // namespace tools
