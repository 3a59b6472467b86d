#pragma once

#include <sys/stat.h>

#include <cstddef>

#include "platform/linux/helpers/collect_request.h"

namespace helpers {

// Whether a file found in `folder` may be copied for `user`: a regular file with this one name only, which
// belongs to the user, or stands in a folder of root's that not everybody may write to.
//
// In a folder that all may write to, another user may have planted a FIFO, a link, or a second name of a file
// that only this user may read.
[[nodiscard]] bool mayBeCopied(const struct stat& file, const struct stat& folder, uid_t user);

// What became of the files that matched.
struct CopyResult {
  std::size_t copied = 0;
  std::size_t leftOut = 0;
  int error = 0;  // errno; 0 if both folders could be opened and every file that fits could be copied
};

// Copies as the request says, at most 1000 files, of the first 20,000 entries of the source. Replaces what
// stands at their names in the target, which has to be the user's own.
[[nodiscard]] CopyResult copyFiles(const CopyFiles& request);

}  // namespace helpers
