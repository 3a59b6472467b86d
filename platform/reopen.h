#pragma once

#include "platform/file_descriptor.h"

namespace platform {

// Opens the file behind `descriptor` once more, with these flags of open(2) and close-on-exec. Invalid, and
// errno set, if it can't be opened. Any thread.
[[nodiscard]] FileDescriptor reopen(int descriptor, int flags);

}  // namespace platform
