// Hands a batch of events with the flags at its arguments behind the first, the root, to the bundle's watch.
// Ends with 3 when that comes back.

#include <cstdlib>
#include <vector>

#include "app/bundle_watch.h"

int main(int argc, char** argv) {
  const auto stream =
      platform::FileEventStream::create(argv[1], std::chrono::milliseconds(500), filestreamcallback);
  std::vector<platform::FileEvent> events;
  for (int i = 2; i < argc; ++i)
    events.push_back({argv[1], static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 0))});
  filestreamcallback(*stream, events);
  return 3;
}
