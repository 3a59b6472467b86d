// file_event_probe FOLDER: prints "watching", or "none" if there is no stream, then one line for each event.
// A separate program because the limits under test apply to a whole process.

#include <iostream>

#include <QCoreApplication>

#include "platform/file_event_stream.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const auto stream = platform::FileEventStream::create(
      argv[1], std::chrono::milliseconds(50), [](auto&, std::span<const platform::FileEvent> events) {
        for (const auto& event : events) std::cout << event.flags << " " << event.path << std::endl;
      });
  if (stream == nullptr) {
    std::cout << "none" << std::endl;
    return 0;
  }
  stream->start();
  std::cout << "watching" << std::endl;
  return QCoreApplication::exec();
}
