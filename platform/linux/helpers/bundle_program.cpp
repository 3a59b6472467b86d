#include "platform/linux/helpers/bundle_program.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

#include "platform/linux/helpers/open_request.h"

namespace helpers {
namespace {

namespace fs = std::filesystem;

std::string withoutTrailingSlashes(const std::string& path) {
  return path.substr(0, path.find_last_not_of('/') + 1);
}

// Uses the rule of fs.protected_symlinks, see proc(5).
bool belongsToOtherUser(const fs::path& bundle) {
  const fs::path folder = bundle.has_parent_path() ? bundle.parent_path() : fs::path(".");
  struct stat parent {};
  struct stat itself {};
  if (::stat(folder.c_str(), &parent) != 0 || ::lstat(bundle.c_str(), &itself) != 0) return false;
  constexpr mode_t shared = S_ISVTX | S_IWOTH;
  return (parent.st_mode & shared) == shared && itself.st_uid != ::geteuid() &&
         itself.st_uid != parent.st_uid;
}

bool isFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

std::vector<fs::path> executablesIn(const fs::path& folder) {
  std::vector<fs::path> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
       entry.increment(error)) {
    if (isFile(entry->path()) && ::access(entry->path().c_str(), X_OK) == 0) found.push_back(entry->path());
  }
  return found;
}

}  // namespace

BundleProgram findBundleProgram(const std::string& bundle) {
  const fs::path root = withoutTrailingSlashes(bundle);
  std::error_code ignored;
  if (!fs::is_directory(root, ignored)) return {{}, "no bundle at " + root.string()};
  if (belongsToOtherUser(root)) return {{}, root.string() + " belongs to another user"};

  const fs::path folder = root / "Contents/MacOS";
  if (const fs::path program = folder / bundleName(bundle); isFile(program)) return {program, {}};

  const std::vector<fs::path> programs = executablesIn(folder);
  if (programs.empty()) return {{}, "no program in " + folder.string()};
  if (programs.size() > 1) return {{}, "more than one program in " + folder.string()};
  return {programs.front(), {}};
}

}  // namespace helpers
