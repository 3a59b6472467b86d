#include <gmock/gmock.h>

#include <chrono>

#include "app/bundle_watch.h"

namespace {

using namespace std::chrono_literals;

// The calls that the fake FileEventStream below receives.
struct Asked {
  std::string path = {};
  std::chrono::milliseconds latency{};
  platform::FileEventStream::Callback callback = {};
  int starts = 0;
};
Asked asked;
bool thereIsAStream = true;

}  // namespace

namespace platform {

struct FileEventStream::Impl {};

FileEventStream::FileEventStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
FileEventStream::~FileEventStream() = default;

std::shared_ptr<FileEventStream> FileEventStream::create(const std::string& path,
                                                         std::chrono::milliseconds latency,
                                                         Callback callback) {
  asked = {.path = path, .latency = latency, .callback = std::move(callback)};
  if (!thereIsAStream) return nullptr;
  return std::shared_ptr<FileEventStream>(new FileEventStream(std::make_unique<Impl>()));
}

void FileEventStream::start() {
  ++asked.starts;
}

void FileEventStream::stop() {}

}  // namespace platform

namespace {

TEST(BundleWatchStart, WatchesBundleWithLatencyOf500Milliseconds) {
  const auto stream = startBundleWatch("/X.app");
  ASSERT_NE(stream, nullptr);
  EXPECT_EQ(asked.path, "/X.app");
  EXPECT_EQ(asked.latency, 500ms);
  EXPECT_EQ(asked.starts, 1);
  auto* const function =
      asked.callback.target<void (*)(platform::FileEventStream&, std::span<const platform::FileEvent>)>();
  ASSERT_NE(function, nullptr);
  EXPECT_EQ(*function, &filestreamcallback);
}

TEST(BundleWatchStart, WithoutStreamReturnsNull) {
  thereIsAStream = false;
  EXPECT_EQ(startBundleWatch("/X.app"), nullptr);
}

}  // namespace
