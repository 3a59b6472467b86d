#include "platform/helper_folder.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <filesystem>
#include <system_error>

#include "platform/bundle.h"
#include "platform/linux/processes/private_folder.h"
#include "platform/log.h"

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr const char* helperNames[] = {"collectlogs", "launchctl", "open", "osascript", "TovalinWebView"};

// Some systems mount runtime folders so that no program runs there.
bool programsRunIn(const std::string& folder) {
  struct statvfs status {};
  return ::statvfs(folder.c_str(), &status) != 0 || (status.f_flag & ST_NOEXEC) == 0;
}

void complain(const std::string& reason) {
  const std::string text = "outside commands run without the agent's helpers: " + reason;
  systemLog(LogPriority::Error, text);
  consoleLog(text);
}

std::string whyThereIsNoHelperFolder() {
  const char* reason = privateFolder() ? "no program runs at " : "no folder of the user's own at ";
  return reason + privateFolderPath();
}

}  // namespace

std::optional<std::string> helperFolder() {
  auto folder = privateFolder();
  if (folder && !programsRunIn(*folder)) folder = privateFolderBelowTmp();
  if (!folder || !programsRunIn(*folder)) return std::nullopt;
  return *folder + "/helpers";
}

void installHelpers() {
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return;
  const auto folder = helperFolder();
  if (!folder) return complain(whyThereIsNoHelperFolder());
  removeHelpers();
  std::error_code error;
  fs::create_directory(*folder, error);
  for (const char* name : helperNames) {
    const std::string copy = *folder + "/" + name;
    fs::copy_file(bundle->bundlePath() + "/Contents/Helpers/" + name, copy, error);
    if (error) complain(copy + ": " + error.message());
    // Those who tidy up runtime folders leave sticky files alone.
    ::chmod(copy.c_str(), S_ISVTX | S_IRWXU);
  }
}

void removeHelpers() {
  const auto folder = helperFolder();
  std::error_code ignored;
  if (folder) fs::remove_all(*folder, ignored);
}

}  // namespace platform
