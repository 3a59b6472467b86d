#include "platform/helper_folder.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <system_error>

#include "platform/bundle.h"
#include "platform/linux/processes/private_folder.h"
#include "platform/log.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* helperNames[] = {"collectlogs", "launchctl", "open", "osascript", "TovalinWebView"};

// Some systems mount runtime folders with noexec.
bool allowsExecution(const std::string& folder) {
  struct statvfs status {};
  return ::statvfs(folder.c_str(), &status) != 0 || (status.f_flag & ST_NOEXEC) == 0;
}

void complain(const std::string& reason) {
  const std::string text = "the agent's helpers are not available after the removal of its bundle: " + reason;
  systemLog(LogPriority::Error, text);
  consoleLog(text);
}

std::string copiesFolderError() {
  const char* reason = privateFolder() ? "no program can be executed in " : "no private folder at ";
  return reason + privateFolderPath();
}

std::string helpersOf(const Bundle& bundle) {
  return bundle.bundlePath() + "/Contents/Helpers";
}

std::optional<std::string> copiesFolder() {
  auto folder = privateFolder();
  if (folder && !allowsExecution(*folder)) folder = privateFolderInTmp();
  if (!folder || !allowsExecution(*folder)) return std::nullopt;
  return *folder + "/helpers";
}

}  // namespace

std::vector<std::string> helperFolders() {
  std::vector<std::string> folders;
  if (const auto copies = copiesFolder()) folders.push_back(*copies);
  if (const auto bundle = Bundle::mainBundle()) folders.push_back(helpersOf(*bundle));
  return folders;
}

void installHelpers() {
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return;
  const auto folder = copiesFolder();
  if (!folder) return complain(copiesFolderError());
  removeHelpers();
  std::error_code error;
  fs::create_directory(*folder, error);
  for (const char* name : helperNames) {
    const std::string copy = *folder + "/" + name;
    fs::copy_file(helpersOf(*bundle) + "/" + name, copy, error);
    if (error) {
      complain(copy + ": " + error.message());
      ::unlink(copy.c_str());  // after ENOSPC the copy is incomplete
      continue;
    }
    // The sticky bit exempts the file from the periodic cleanup of runtime directories.
    ::chmod(copy.c_str(), S_ISVTX | S_IRWXU);
  }
}

void removeHelpers() {
  const auto folder = copiesFolder();
  std::error_code ignored;
  if (folder) fs::remove_all(*folder, ignored);
}

}  // namespace platform
