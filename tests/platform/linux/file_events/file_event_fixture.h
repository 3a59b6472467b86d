#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/file_event_stream.h"
#include "tests/harness/desktop/event_loop.h"

namespace platform {
inline void PrintTo(const FileEvent& event, std::ostream* stream) {
  *stream << event.flags << " " << event.path;
}
}  // namespace platform

// A watched folder of its own and the batches that the run loop delivers. To prove that a change is not
// reported, a test makes a reported change afterwards: the batch must contain nothing else.
class FileEvents : public testing::Test {
 protected:
  using Batch = std::vector<platform::FileEvent>;
  using Stream = platform::FileEventStream;

  static constexpr std::chrono::milliseconds kLatency{100};

  void SetUp() override {
    std::filesystem::remove_all("/tmp/way");
    std::filesystem::create_directories(root_);
  }
  void TearDown() override { stream_.reset(); }

  void watch(std::chrono::milliseconds latency = kLatency) { watchAt(root_, latency); }
  void watchAt(const std::string& path, std::chrono::milliseconds latency = kLatency) {
    stream_ = make(path, latency);
    ASSERT_NE(stream_, nullptr);
    stream_->start();
  }
  std::shared_ptr<Stream> make(const std::string& path, std::chrono::milliseconds latency = kLatency) {
    return Stream::create(path, latency, [this](Stream&, std::span<const platform::FileEvent> events) {
      batches_.emplace_back(events.begin(), events.end());
    });
  }

  // Returns the next batch, or an empty one after the timeout.
  Batch nextBatch() {
    if (!serveEventsUntil([this] { return !batches_.empty(); })) return {};
    Batch batch = batches_.front();
    batches_.erase(batches_.begin());
    return batch;
  }

  [[nodiscard]] std::string inRoot(const std::string& name) const { return root_ + "/" + name; }
  void makeFolder(const std::string& name) const { std::filesystem::create_directories(inRoot(name)); }
  void write(const std::string& name) const { std::ofstream(inRoot(name), std::ios::app) << "text"; }

  [[nodiscard]] platform::FileEvent changed(const std::string& name = "") const {
    return {name.empty() ? root_ : inRoot(name), 0};
  }
  [[nodiscard]] platform::FileEvent rootChanged() const { return {root_, Stream::rootChanged}; }

  std::string root_ = "/tmp/way/middle/root";
  std::shared_ptr<Stream> stream_;
  std::vector<Batch> batches_;
};
