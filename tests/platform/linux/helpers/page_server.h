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

// A real server of pages on a port of its own on loopback. It remembers what it was asked for. What it
// doesn't know it answers with an empty page.
class PageServer {
 public:
  // How long a test waits for an engine, which a busy machine may keep from asking for a while.
  static constexpr std::chrono::seconds enginesPatience{60};

  PageServer();
  ~PageServer();
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  void put(const std::string& path, const std::string& html) { answers_[path] = {.body = html}; }
  void putDownload(const std::string& path);
  void redirect(const std::string& path, const std::string& to) { answers_[path] = {.location = to}; }
  // Answers with the status that says that there is no page to show.
  void answerNothing(const std::string& path) { answers_[path] = {.status = 204}; }
  void askForPassword(const std::string& path) { answers_[path] = {.status = 401}; }
  // Never answers a request for this path.
  void hang(const std::string& path) { answers_[path] = {.hangs = true}; }
  // Answers no request for this path from now on before letGo().
  void holdBack(const std::string& path);
  void letGo();

  [[nodiscard]] std::string address(const std::string& path) const;
  // The targets of all requests so far, in their order.
  [[nodiscard]] std::vector<std::string> asked() const;
  // When this one was asked for.
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
  // Waits until an answer for this path may go out, for ever where it `hangs`, but no longer than this object
  // lives.
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
