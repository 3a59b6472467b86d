#include "usage/private_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>
#include <system_error>

#include "usage/file_bytes.h"

namespace {

constexpr mode_t groupAndOtherAccess = S_IRWXG | S_IRWXO;

// Other files in the folder belong to the user and are left unchanged.
bool isAgentFile(std::string_view name) {
  return name.ends_with(".dat") || name == "TovalinUUID.txt" || name == "TovalinServerOption.txt";
}

void makeFilesPrivate(const std::string& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entry(folder, error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    std::error_code gone;
    if (!isAgentFile(entry->path().filename().native())) continue;
    if (!std::filesystem::is_regular_file(entry->symlink_status(gone))) continue;
    if (const auto file = openForReading(entry->path().string()); file.valid()) makePrivate(file);
  }
}

}  // namespace

void makePrivate(const platform::FileDescriptor& file) {
  struct stat status {};
  if (::fstat(file.get(), &status) != 0 || status.st_uid != ::geteuid()) return;
  if (!S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return;
  if ((status.st_mode & groupAndOtherAccess) == 0) return;
  ::fchmod(file.get(), status.st_mode & ~groupAndOtherAccess & 07777);
}

void makeFolderPrivate(const std::string& path) {
  const platform::FileDescriptor folder(
      ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
  if (!folder.valid()) return;
  makePrivate(folder);
  makeFilesPrivate(path);
}
