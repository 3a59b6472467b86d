#include "tests/harness/servers/page_server.h"

#include <algorithm>

namespace web_view_test {

PageServer::PageServer() {
  server_.set_pre_routing_handler([this](const httplib::Request& request, httplib::Response& response) {
    answer(request, response);
    return httplib::Server::HandlerResponse::Handled;
  });
  port_ = server_.bind_to_any_port("127.0.0.1");
  thread_ = std::thread([this] { server_.listen_after_bind(); });
}

PageServer::~PageServer() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
  // httplib ignores stop() before the server runs.
  static_cast<void>(test_support::waitUntil([this] { return server_.is_running(); }));
  server_.stop();
  thread_.join();
}

void PageServer::putDownload(const std::string& path) {
  answers_[path] = {.body = "bytes", .download = true};
}

void PageServer::holdBack(const std::string& path) {
  const std::lock_guard lock(mutex_);
  heldBack_ = path;
}

void PageServer::letGo() {
  {
    const std::lock_guard lock(mutex_);
    heldBack_.clear();
  }
  changed_.notify_all();
}

std::string PageServer::address(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::vector<std::string> PageServer::asked() const {
  const std::lock_guard lock(mutex_);
  return asked_;
}

std::vector<std::chrono::steady_clock::time_point> PageServer::timesOf(const std::string& target) const {
  const std::lock_guard lock(mutex_);
  std::vector<std::chrono::steady_clock::time_point> times;
  for (std::size_t i = 0; i < asked_.size(); ++i) {
    if (asked_[i] == target) times.push_back(times_[i]);
  }
  return times;
}

bool PageServer::wasAsked(const std::string& target) const {
  return std::ranges::count(asked(), target) != 0;
}

bool PageServer::waitFor(const std::string& target, std::chrono::milliseconds timeout) const {
  return test_support::waitUntil([&] { return wasAsked(target); }, timeout);
}

void PageServer::answer(const httplib::Request& request, httplib::Response& response) {
  {
    const std::lock_guard lock(mutex_);
    asked_.push_back(request.target);
    times_.push_back(std::chrono::steady_clock::now());
  }
  const auto found = answers_.find(request.path);
  const Answer answer = found == answers_.end() ? Answer{} : found->second;
  waitForLeave(request.path, answer.hangs);
  if (!answer.location.empty()) return response.set_redirect(answer.location);
  response.status = answer.status;
  if (answer.status == 204) return;
  if (answer.status == 401) response.set_header("WWW-Authenticate", "Basic realm=\"page\"");
  if (answer.download) response.set_header("Content-Disposition", "attachment; filename=\"download.bin\"");
  response.set_content(answer.body, answer.download ? "application/octet-stream" : "text/html");
}

void PageServer::waitForLeave(const std::string& path, bool hangs) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return ended_ || !(hangs || path == heldBack_); });
}

}  // namespace web_view_test
