#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/harness/processes/wait_until.h"

namespace web_view_test {

// An HTTP server on an ephemeral port of 127.0.0.1 that records the requests. An unknown path gets an empty
// page.
class PageServer {
 public:
  // Timeout for a request of the web engine, which starts slowly on a busy machine.
  static constexpr std::chrono::seconds enginesPatience{60};

  PageServer();
  ~PageServer();
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  void put(const std::string& path, const std::string& html) { answers_[path] = {.body = html}; }
  void putDownload(const std::string& path);
  void redirect(const std::string& path, const std::string& to) { answers_[path] = {.location = to}; }
  // Replies with 204 No Content.
  void answerNothing(const std::string& path) { answers_[path] = {.status = 204}; }
  void askForPassword(const std::string& path) { answers_[path] = {.status = 401}; }
  // Never replies to a request for this path.
  void hang(const std::string& path) { answers_[path] = {.hangs = true}; }
  // Delays replies for this path until letGo().
  void holdBack(const std::string& path);
  void letGo();

  [[nodiscard]] std::string address(const std::string& path) const;
  // Returns the targets of all requests so far, in order. Thread-safe.
  [[nodiscard]] std::vector<std::string> asked() const;
  // Returns the times of the requests for `target`. Thread-safe.
  [[nodiscard]] std::vector<std::chrono::steady_clock::time_point> timesOf(const std::string& target) const;
  [[nodiscard]] bool wasAsked(const std::string& target) const;
  [[nodiscard]] bool waitFor(const std::string& target,
                             std::chrono::milliseconds timeout = enginesPatience) const;

 private:
  struct Answer {
    std::string body = {};
    std::string location = {};
    bool download = false;
    int status = 200;
    bool hangs = false;
  };
  void answer(const httplib::Request& request, httplib::Response& response);
  // Blocks until a reply for `path` may be sent, or until the destructor runs. With `hangs`, only the
  // destructor ends the wait.
  void waitForLeave(const std::string& path, bool hangs);

  httplib::Server server_;
  int port_ = 0;
  std::map<std::string, Answer> answers_;  // set before the first request for them
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  bool ended_ = false;
  std::string heldBack_;
  std::vector<std::string> asked_;
  std::vector<std::chrono::steady_clock::time_point> times_;
  std::thread thread_;
};

}  // namespace web_view_test
