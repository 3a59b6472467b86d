#pragma once

#include <spawn.h>

namespace platform {

// Has a child of posix_spawn(3) close every descriptor from `first` on, also those that libraries opened
// without close-on-exec. Any thread.
void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions);

}  // namespace platform
