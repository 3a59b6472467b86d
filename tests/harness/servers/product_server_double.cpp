#include "tests/harness/servers/product_server_double.h"

#include <algorithm>

namespace test_support {
namespace {

ServedRequest asServed(const httplib::Request& request) {
  return {request.method, request.target, {request.headers.begin(), request.headers.end()}, {}};
}

}  // namespace

ProductServerDouble::ProductServerDouble() {
  server_.Get(".*", [this](const httplib::Request& request, httplib::Response& response) {
    record(asServed(request));
    const std::lock_guard lock(mutex_);
    const auto file = files_.find(request.path);
    if (filesAreHeldBack_) {
      response.status = 503;
    } else if (file == files_.end()) {
      response.status = 404;
    } else {
      response.set_content(file->second, "application/octet-stream");
    }
  });
  server_.Post(".*", [this](const httplib::Request& request, httplib::Response& response,
                            const httplib::ContentReader& read) {
    ServedRequest recorded = asServed(request);
    // Keep the body verbatim: the library's form parser rejects a line break before the first delimiter.
    const_cast<httplib::Request&>(request).headers.erase("Content-Type");
    read([&](const char* data, std::size_t size) {
      recorded.body.append(data, size);
      return true;
    });
    record(recorded);
    const Reply reply = judge()(recorded);
    response.status = reply.status;
    response.set_content(reply.body, "text/plain");
  });
  port_ = server_.bind_to_any_port("127.0.0.1");
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  while (!server_.is_running()) std::this_thread::yield();
}

ProductServerDouble::~ProductServerDouble() {
  server_.stop();
  thread_.join();
}

void ProductServerDouble::put(const std::string& path, const std::string& body) {
  const std::lock_guard lock(mutex_);
  files_[path] = body;
}

void ProductServerDouble::putVersion(const std::string& version) {
  put("/product/nimba/binary/tovalin_recent_version_info.xml",
      "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>version</key><string>" + version +
          "</string></dict></plist>");
}

void ProductServerDouble::judgeUploads(Judge judge) {
  const std::lock_guard lock(mutex_);
  judge_ = std::move(judge);
}

std::vector<ServedRequest> ProductServerDouble::requests() const {
  const std::lock_guard lock(mutex_);
  return requests_;
}

bool ProductServerDouble::waitForRequests(const std::string& method, std::size_t count) const {
  std::unique_lock lock(mutex_);
  return arrived_.wait_for(lock, kPatience, [&] {
    return static_cast<std::size_t>(std::ranges::count(requests_, method, &ServedRequest::method)) >= count;
  });
}

ProductServerDouble::Judge ProductServerDouble::judge() const {
  const std::lock_guard lock(mutex_);
  return judge_;
}

void ProductServerDouble::record(const ServedRequest& request) {
  const std::lock_guard lock(mutex_);
  requests_.push_back(request);
  arrived_.notify_all();
}

}  // namespace test_support
