#include "app/bundle_watch.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "app/shell_commands.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/shell.h"

using namespace std::chrono_literals;

namespace {

void logFlags(std::uint32_t flags) {
  // Frozen: doc/compatibility.md.
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "filestreamcallback event flag : %d, 0x%x", static_cast<int>(flags),
                flags);
  platform::systemLog(platform::LogPriority::Info, text.data());
}

}  // namespace

bool endsAgent(std::uint32_t flags) {
  return (flags & platform::FileEventStream::rootChanged) != 0;
}

void filestreamcallback(platform::FileEventStream& stream, std::span<const platform::FileEvent> events) {
  stream.stop();
  for (const platform::FileEvent& event : events) {
    logFlags(event.flags);
    if (!endsAgent(event.flags)) continue;
    platform::system(unloadLaunchAgentCommand);
    platform::Application::sharedApplication().terminate();
  }
}

std::shared_ptr<platform::FileEventStream> startBundleWatch(const std::string& path) {
  // The latency is frozen: doc/compatibility.md.
  auto stream = platform::FileEventStream::create(path, 500ms, filestreamcallback);
  if (stream != nullptr) stream->start();
  return stream;
}
