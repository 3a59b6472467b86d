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

// A request as it came.
struct ServedRequest {
  std::string method = {};
  std::string target = {};  // path and query
  std::multimap<std::string, std::string> headers = {};
  std::string body = {};
};

// The product server, as a test wants it, on the loopback. What nobody has put there is answered with status
// 404. Its methods may be called on any thread.
class ProductServerDouble {
 public:
  struct Reply {
    int status = 200;
    std::string body = {};
  };
  // What an upload is answered with.
  using Judge = std::function<Reply(const ServedRequest&)>;

  ProductServerDouble();
  ProductServerDouble(const ProductServerDouble&) = delete;
  ProductServerDouble& operator=(const ProductServerDouble&) = delete;
  ~ProductServerDouble();

  // "http://127.0.0.1:8080"
  [[nodiscard]] std::string origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

  void put(const std::string& path, const std::string& body);
  // A list with that version, where the agent looks for it.
  void putVersion(const std::string& version);
  void judgeUploads(Judge judge);
  // Whether files are answered with status 503 and nothing else, which the agent takes for a missing network.
  void holdFilesBack(bool held) { filesAreHeldBack_ = held; }

  [[nodiscard]] std::vector<ServedRequest> requests() const;
  // Those with that method, once there are so many.
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
