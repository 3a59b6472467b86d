#include "platform/helper_folder.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "platform/bundle.h"
#include "platform/linux/processes/private_folder.h"
#include "platform/log.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view webViewHelper = "TovalinWebView";
constexpr std::string_view helperNames[] = {"collectlogs", "launchctl", "open", "osascript", webViewHelper};

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

// A package of its own contains it.
bool isLeftOut(std::string_view helper, const std::string& program) {
  std::error_code error;
  return helper == webViewHelper && fs::status(program, error).type() == fs::file_type::not_found;
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
  for (const std::string_view name : helperNames) {
    const std::string program = helpersOf(*bundle) + "/" + std::string(name);
    if (isLeftOut(name, program)) continue;
    const std::string copy = *folder + "/" + std::string(name);
    fs::copy_file(program, copy, error);
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
