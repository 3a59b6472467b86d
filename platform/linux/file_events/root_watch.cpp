#include "platform/linux/file_events/root_watch.h"

#include <fcntl.h>
#include <sys/inotify.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t itself = IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t rootItself = itself | IN_ONLYDIR | IN_MASK_ADD;
// Where a folder doesn't tell of its own end, the one above does. Not asked for elsewhere: a folder such as
// /tmp sees entries go all day.
constexpr std::uint32_t itsEntries = IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE;

}  // namespace

RootWatch::RootWatch(std::string path, const FileIdentity& identity)
    : path_(std::move(path)),
      identity_(identity),
      mounts_(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)) {}

std::optional<RootWatch> RootWatch::create(const std::string& path) {
  if (!fs::path(path).is_absolute()) return std::nullopt;
  const auto identity = folderAt(path);
  if (!identity) return std::nullopt;
  RootWatch watch(path, *identity);
  if (!watch.watchWay()) return std::nullopt;
  return watch;
}

bool RootWatch::hasChanged() {
  way_.drain([](const Inotify::Notice&) {});
  if (const auto leads = leadsToWatchedRoot()) hasChanged_ = !*leads;
  return hasChanged_;
}

// Asking for the root's watch again gives its number only for the very same folder, because the watch holds
// on to it. What a folder is made of may change under it: the first write to one in an overlay moves it to
// another layer, and its time of making with it.
std::optional<bool> RootWatch::leadsToWatchedRoot() {
  if (root_ >= 0) {
    const int found = way_.add(path_, rootItself);
    if (found >= 0) return found == root_;
    if (saysThereIsNone(errno)) return false;
  }
  return leadsTo(path_, identity_);
}

// Moving a folder tells those below it nothing, so each on the way is watched; where the path runs over
// links, each on the way by which they lead too.
bool RootWatch::watchWay() {
  root_ = way_.add(path_, rootItself);
  std::error_code error;
  for (const fs::path& way : {fs::path(path_), fs::canonical(path_, error)}) {
    if (error || !watchFoldersOf(way)) return false;
  }
  return watchesAny_;
}

// The root, held open by somebody, tells of its removal only when it is let go; those above it must be empty
// before they can be removed. A link tells of nothing. A folder that may not be read can't be watched.
bool RootWatch::watchFoldersOf(const fs::path& way) {
  std::uint32_t mask = itself;
  for (fs::path folder = way;; folder = folder.parent_path()) {
    const bool watched = way_.add(folder.native(), mask | IN_ONLYDIR | IN_MASK_ADD) >= 0;
    if (!watched && errno != EACCES) return false;
    watchesAny_ = watchesAny_ || watched;
    if (!folder.has_relative_path()) return true;
    std::error_code error;
    const bool tellsOfItsEnd = watched && folder != way && !fs::is_symlink(folder, error);
    mask = tellsOfItsEnd ? itself : itself | itsEntries;
  }
}

}  // namespace platform
