#include "usage/upload_files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <new>
#include <system_error>

#include "platform/log.h"
#include "usage/file_bytes.h"

std::vector<std::string> uploadCandidates(const std::string& folder) {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    std::string name = entry->path().filename().string();
    if (name.ends_with(".dat")) names.push_back(std::move(name));
  }
  return names;
}

std::optional<std::string> contentsOfFile(const std::string& path) {
  const auto file = openForReading(path);
  struct stat status {};
  if (!file.valid() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > maxUploadSize) {
    platform::systemLog(platform::LogPriority::Error, "usage file too large to upload : " + path);
    return std::nullopt;
  }
  try {
    std::string contents(size, '\0');
    if (!readWhole(file, contents)) return std::nullopt;
    return contents;
  } catch (const std::bad_alloc&) {
    return std::nullopt;
  }
}

void removeSentFile(const SentFile& file) {
  const auto size = sizeOfFileAt(file.path);
  if (size && *size <= file.size) ::unlink(file.path.c_str());
}
