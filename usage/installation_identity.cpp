#include "usage/installation_identity.h"

#include <algorithm>
#include <memory>
#include <new>

#include "platform/log.h"
#include "platform/uuid.h"
#include "usage/application_directory.h"
#include "usage/file_bytes.h"
#include "usage/private_files.h"

namespace {

void readIdentifier(const platform::FileDescriptor& file, std::span<char> buffer) {
  const std::unique_ptr<char[]> stored(new (std::nothrow) char[uuidTextLength]);
  if (stored == nullptr) return platform::errorLog("memory alloc failed");
  const std::span<char> bytes(stored.get(), uuidTextLength);
  if (!readWhole(file, bytes)) return platform::errorLog("file read failed");
  std::ranges::copy(bytes, buffer.begin());
}

void makeIdentifier(const std::string& path, std::span<char> buffer) {
  const std::string uuid = CreateUUID();
  if (!writeNewFile(path, uuid)) return;
  std::copy_n(uuid.c_str(), uuid.size() + 1, buffer.begin());
}

}  // namespace

std::string CreateUUID() {
  return platform::createUuidString();
}

// Frozen: doc/compatibility.md.
void GetTovalinUUID(std::span<char> buffer) {
  const auto path = applicationFile("TovalinUUID.txt");
  if (!path || buffer.size() <= uuidTextLength) return;
  if (const auto file = openForReading(*path); file.valid()) {
    const auto size = sizeOf(file);
    if (!size) return platform::errorLog("file read failed");
    makePrivate(file);
    if (*size == uuidTextLength) return readIdentifier(file, buffer);
    platform::errorLog("UUID is wrong, new UUID create.");
  } else if (sizeOfFileAt(*path) == uuidTextLength) {
    // Opening fails with EMFILE, for example. The stored identifier may be valid and must not be replaced.
    return platform::errorLog("create file failed");
  }
  makeIdentifier(*path, buffer);
}
