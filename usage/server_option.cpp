#include "usage/server_option.h"

#include "platform/log.h"
#include "usage/application_directory.h"
#include "usage/file_bytes.h"

namespace {

constexpr char productServer = '1';
constexpr char testUploadServer = '0';

int storedOption(const platform::FileDescriptor& file, std::size_t size) {
  char option = productServer;
  if (!readWhole(file, std::span<char>(&option, size))) platform::errorLog("file read failed");
  return option == testUploadServer ? 0 : 1;
}

}  // namespace

int GetTovalinServerOption() {
  const auto path = applicationFile("TovalinServerOption.txt");
  if (!path) {
    platform::systemLog(platform::LogPriority::Error, "get dir fail!!");
    return 1;
  }
  if (const auto file = openForReading(*path); file.valid()) {
    const std::size_t size = sizeOf(file);
    if (size < 2) return storedOption(file, size);
  }
  static_cast<void>(writeNewFile(*path, std::string_view(&productServer, 1)));
  return 1;
}
