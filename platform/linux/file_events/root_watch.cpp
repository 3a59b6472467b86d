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

constexpr std::uint32_t selfEvents = IN_MOVE_SELF | IN_DELETE_SELF;
constexpr std::uint32_t rootEvents = selfEvents | IN_ONLYDIR | IN_MASK_ADD;
// Events on the entries of a folder, for the case that a child does not report its own removal. Not used for
// all folders: the entries of a folder such as /tmp change all the time.
constexpr std::uint32_t entryEvents = IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE;

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
  if (!watch.watchPath()) return std::nullopt;
  return watch;
}

bool RootWatch::hasChanged() {
  inotify_.drain([](const Inotify::Notice&) {});
  if (const auto leads = leadsToWatchedRoot()) hasChanged_ = !*leads;
  return hasChanged_;
}

// inotify_add_watch returns the same watch descriptor only for the same inode, which the watch keeps alive.
// The identity alone does not suffice: the first write to a folder on overlayfs copies it up and changes its
// birth time.
std::optional<bool> RootWatch::leadsToWatchedRoot() {
  if (root_ >= 0) {
    const int found = inotify_.add(path_, rootEvents);
    if (found >= 0) return found == root_;
    if (meansNotFound(errno)) return false;
  }
  return leadsTo(path_, identity_);
}

// Watches every ancestor, because moving a folder raises no event in the folders below it. If the path
// contains links, also watches every ancestor of the canonical path.
bool RootWatch::watchPath() {
  root_ = inotify_.add(path_, rootEvents);
  std::error_code error;
  for (const fs::path& path : {fs::path(path_), fs::canonical(path_, error)}) {
    if (error || !watchAncestorsOf(path)) return false;
  }
  return watchesAny_;
}

// Adds entryEvents to the parent of a folder that may not report its own removal: the root, whose
// IN_DELETE_SELF is delayed while a process holds it open; a link, which raises no events; a folder that
// cannot be watched (EACCES). The other ancestors need no entryEvents: they can be removed only when they are
// empty, after the root.
bool RootWatch::watchAncestorsOf(const fs::path& path) {
  std::uint32_t mask = selfEvents;
  for (fs::path folder = path;; folder = folder.parent_path()) {
    const bool watched = inotify_.add(folder.native(), mask | IN_ONLYDIR | IN_MASK_ADD) >= 0;
    if (!watched && errno != EACCES) return false;
    watchesAny_ = watchesAny_ || watched;
    if (!folder.has_relative_path()) return true;
    std::error_code error;
    const bool reportsOwnRemoval = watched && folder != path && !fs::is_symlink(folder, error);
    mask = reportsOwnRemoval ? selfEvents : selfEvents | entryEvents;
  }
}

}  // namespace platform
