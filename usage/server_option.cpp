#include "usage/server_option.h"

#include <string_view>

#include "platform/log.h"
#include "usage/application_directory.h"
#include "usage/file_bytes.h"
#include "usage/private_files.h"

namespace {

// Frozen: doc/compatibility.md.
constexpr char productServerOption = '1';
constexpr char testUploadServer = '0';
constexpr std::size_t maxOptionLength = 1;

int unknownOption(std::string_view failure) {
  platform::errorLog(failure);
  return 1;
}

int storedOption(const platform::FileDescriptor& file, std::size_t size) {
  char option = productServerOption;
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
    const auto size = sizeOf(file);
    if (!size) return unknownOption("file read failed");
    makePrivate(file);
    if (*size <= maxOptionLength) return storedOption(file, *size);
  } else if (sizeOfFileAt(*path).value_or(maxOptionLength + 1) <= maxOptionLength) {
    // The file exists but cannot be opened now; its content may be valid and must not be replaced.
    return unknownOption("create file failed");
  }
  static_cast<void>(writeNewFile(*path, std::string_view(&productServerOption, 1)));
  return 1;
}
