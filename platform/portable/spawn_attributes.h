#pragma once

#include <signal.h>
#include <spawn.h>
#include <unistd.h>

#include "platform/descriptors.h"

namespace platform {

// Attributes for all child processes: default signal handling and an empty signal mask, regardless of the
// parent's.
class SpawnAttributes {
 public:
  explicit SpawnAttributes(short moreFlags = 0) {
    posix_spawnattr_init(&attributes_);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes_, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes_, &signals);
    posix_spawnattr_setflags(&attributes_,
                             static_cast<short>(POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | moreFlags));
  }
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;

  [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_{};
};

// File actions for a child's standard streams. All other descriptors are closed in the child, because
// libraries open descriptors without close-on-exec.
class SpawnStreams {
 public:
  SpawnStreams() { posix_spawn_file_actions_init(&actions_); }
  ~SpawnStreams() { posix_spawn_file_actions_destroy(&actions_); }
  SpawnStreams(const SpawnStreams&) = delete;
  SpawnStreams& operator=(const SpawnStreams&) = delete;

  // `stream` is one of the descriptors 0 to 2.
  void set(int stream, int descriptor) { posix_spawn_file_actions_adddup2(&actions_, descriptor, stream); }
  void lead(int stream, const char* path, int flags) {
    posix_spawn_file_actions_addopen(&actions_, stream, path, flags, 0);
  }

  // Call last: closes all descriptors above standard error.
  [[nodiscard]] const posix_spawn_file_actions_t* get() {
    closeDescriptorsFrom(STDERR_FILENO + 1, actions_);
    return &actions_;
  }

 private:
  posix_spawn_file_actions_t actions_{};
};

}  // namespace platform
