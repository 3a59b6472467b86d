#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "platform/file_event_stream.h"

// Watches the main application's bundle and ends the agent when the bundle is moved, renamed or removed.

// Returns whether an event with these flags ends the agent. Other events are only logged.
[[nodiscard]] bool endsAgent(std::uint32_t flags);

// Handles one batch of events of the bundle's stream. Stops the stream first, so the watch handles one batch
// only. Does not return if an event ends the agent. Main thread only.
void filestreamcallback(platform::FileEventStream& stream, std::span<const platform::FileEvent> events);

// Starts the watch on the bundle at `path`, with filestreamcallback as its callback. Returns nullptr if the
// bundle cannot be watched. The watch is active for as long as the stream exists. Main thread only.
[[nodiscard]] std::shared_ptr<platform::FileEventStream> startBundleWatch(const std::string& path);
