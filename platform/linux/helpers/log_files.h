#pragma once

#include <sys/stat.h>

#include <cstddef>

#include "platform/linux/helpers/collect_request.h"

namespace helpers {

// Returns whether a file in `folder` may be copied for `user`: a regular file with a link count of 1 that
// belongs to the user, or is in a folder that is owned by root and not world-writable. Thread-safe.
//
// In a world-writable folder, another local user may have planted a FIFO, a link, or a hard link to a file
// that only this user may read.
[[nodiscard]] bool isCopyAllowed(const struct stat& file, const struct stat& folder, uid_t user);

// Numbers of files that matched the pattern.
struct CopyResult {
  std::size_t copied = 0;
  std::size_t leftOut = 0;
  int error = 0;  // errno; 0 if both folders were opened and all files that fit were copied
};

// Copies the requested files: at most 1000, from the first 20,000 entries of the source. Replaces files of
// the same name in the target, which must be owned by the user.
[[nodiscard]] CopyResult copyFiles(const CopyFiles& request);

}  // namespace helpers
