#pragma once

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/harness/processes/wait_until.h"

namespace test_support {

// A request, verbatim.
struct ServedRequest {
  std::string method = {};
  std::string target = {};  // path and query
  std::multimap<std::string, std::string> headers = {};
  std::string body = {};
};

// A fake product server on the loopback interface. Replies with status 404 to paths that were not set by
// `put`. Thread-safe.
class ProductServerDouble {
 public:
  struct Reply {
    int status = 200;
    std::string body = {};
  };
  // Returns the reply to an upload.
  using Judge = std::function<Reply(const ServedRequest&)>;

  ProductServerDouble();
  ProductServerDouble(const ProductServerDouble&) = delete;
  ProductServerDouble& operator=(const ProductServerDouble&) = delete;
  ~ProductServerDouble();

  // Returns for example "http://127.0.0.1:8080".
  [[nodiscard]] std::string origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

  void put(const std::string& path, const std::string& body);
  // Puts a version list at the path that the agent fetches.
  void putVersion(const std::string& version);
  void judgeUploads(Judge judge);
  // While held, replies to every GET with status 503 and no body, which the agent treats as a missing
  // network.
  void holdFilesBack(bool held) { filesAreHeldBack_ = held; }

  [[nodiscard]] std::vector<ServedRequest> requests() const;
  // Waits until `count` requests with that method have arrived.
  [[nodiscard]] bool waitForRequests(const std::string& method, std::size_t count) const;

 private:
  void record(const ServedRequest& request);
  [[nodiscard]] Judge judge() const;

  httplib::Server server_;
  int port_ = 0;
  mutable std::mutex mutex_;
  mutable std::condition_variable arrived_;
  std::map<std::string, std::string> files_;
  std::atomic<bool> filesAreHeldBack_ = false;
  Judge judge_ = [](const ServedRequest&) { return Reply{}; };
  std::vector<ServedRequest> requests_;
  std::thread thread_;
};

}  // namespace test_support
