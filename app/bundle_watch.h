#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "platform/file_event_stream.h"

// The watch on the main application's bundle, which ends the agent when the bundle is moved, renamed or
// removed.

// Whether an event with these flags ends the agent; one without the flag for it is only logged.
[[nodiscard]] bool endsAgent(std::uint32_t flags);

// Takes a batch of events from the stream on the bundle. The watch is good for one batch, whatever it holds:
// the stream is stopped before anything else. Main thread; does not return where an event ends the agent.
void filestreamcallback(platform::FileEventStream& stream, std::span<const platform::FileEvent> events);

// Starts the watch on the bundle at `path`, which reports to filestreamcallback. Returns null if there is no
// watch to be had. Main thread; the watch lasts as long as the stream is held.
[[nodiscard]] std::shared_ptr<platform::FileEventStream> startBundleWatch(const std::string& path);
