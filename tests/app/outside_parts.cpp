#include "tests/app/outside_parts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <utility>

#include "ipc/command_pipe.h"
#include "platform/clock.h"
#include "platform/file_event_stream.h"
#include "platform/shell.h"
#include "platform/thread.h"
#include "platform/timer.h"
#include "platform/url_request.h"
#include "platform/web_view.h"

namespace outside_parts {
namespace {

// A file, so that forked children append to the same steps.
constexpr const char* stepFile = "/tmp/steps";

struct State {
  std::map<std::string, std::string> replies;
  std::function<std::string()> look;
  std::function<void()> tick;
};

State& state() {
  static State all;
  return all;
}

// Appends one line per step.
void take(std::string step) {
  std::ranges::replace(step, '\n', ' ');
  std::ofstream(stepFile, std::ios::app) << step << (state().look ? state().look() : "") << '\n';
}

std::string pathOf(const std::string& url) {
  const std::size_t host = url.find("://");
  return url.substr(url.find('/', host == std::string::npos ? 0 : host + 3));
}

std::string described(const platform::UrlRequest& request) {
  const bool pastCaches = request.cachePolicy == platform::UrlRequest::CachePolicy::ReloadIgnoringLocalCache;
  return request.method + " " + pathOf(request.url) + " within " +
         std::to_string(request.timeoutInterval.count()) + " ms" + (pastCaches ? ", no cache" : "");
}

// Returns "clickaction quit" for an address that ends in "?category=clickaction&clickaction=quit".
std::string beaconIn(const std::string& address) {
  const std::string query = address.substr(address.find("?category=") + 10);
  const std::string category = query.substr(0, query.find('&'));
  return category + " " + query.substr(2 * category.size() + 2);
}

}  // namespace

void reset() {
  std::filesystem::remove(stepFile);
  state() = {};
}

std::vector<std::string> steps() {
  std::vector<std::string> all;
  std::ifstream file(stepFile);
  for (std::string line; std::getline(file, line);) all.push_back(line);
  return all;
}

void reply(const std::string& path, const std::string& body) {
  state().replies[path] = body;
}

void lookAtEachStep(std::function<std::string()> look) {
  state().look = std::move(look);
}

void tick() {
  state().tick();
}

}  // namespace outside_parts

using outside_parts::take;

int sendPipeMsg(const char* message) {
  take(std::string("pipe ") + message);
  return 0;
}

namespace platform {

int system(const std::string& command) {
  take("run " + command);
  return 0;
}

std::optional<int> system(const std::string& command, std::chrono::milliseconds /*limit*/) {
  return system(command);
}

std::optional<std::string> sendSynchronousRequest(const UrlRequest& request) {
  take(outside_parts::described(request));
  const auto& replies = outside_parts::state().replies;
  const auto found = replies.find(outside_parts::pathOf(request.url));
  return found == replies.end() ? std::nullopt : std::optional(found->second);
}

struct WebView::Impl {};

WebView::WebView(Rect frame) : frame_(frame) {}
WebView::~WebView() = default;

void WebView::loadRequest(const std::string& url) {
  take("beacon " + outside_parts::beaconIn(url));
}

void detachNewThread(std::function<void()>) {
  take("thread");
}

struct Timer::Impl {};

std::shared_ptr<Timer> Timer::scheduledTimer(std::chrono::milliseconds interval,
                                             std::function<void()> action) {
  take("timer every " + std::to_string(interval.count()) + " ms");
  outside_parts::state().tick = std::move(action);
  return std::shared_ptr<Timer>(new Timer(std::make_unique<Impl>()));
}

Timer::Timer(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Timer::~Timer() = default;

void Timer::invalidate() {
  take("timer stopped");
}

struct FileEventStream::Impl {};

std::shared_ptr<FileEventStream> FileEventStream::create(const std::string&,
                                                         std::chrono::milliseconds latency, Callback) {
  take("watch for " + std::to_string(latency.count()) + " ms");
  return std::shared_ptr<FileEventStream>(new FileEventStream(std::make_unique<Impl>()));
}

FileEventStream::FileEventStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
FileEventStream::~FileEventStream() = default;

void FileEventStream::start() {
  take("watch started");
}

void FileEventStream::stop() {
  take("watch stopped");
}

std::tm currentLocalTime() {
  take("clock");
  std::tm time{};
  static_cast<void>(::strptime("2024-03-06 23:59:30", "%Y-%m-%d %H:%M:%S", &time));
  return time;
}

void noticeTimeZone() {
  take("time zone");
}

}  // namespace platform
