#include "platform/spawn_descriptors.h"

namespace platform {

void closeDescriptorsFrom(int first, posix_spawn_file_actions_t& actions) {
  posix_spawn_file_actions_addclosefrom_np(&actions, first);
}

}  // namespace platform
