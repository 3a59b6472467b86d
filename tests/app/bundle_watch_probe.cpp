// bundle_watch_probe ROOT [FLAGS...]: calls filestreamcallback() with one event per FLAGS. Exits with 3 if
// the callback returns.

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
