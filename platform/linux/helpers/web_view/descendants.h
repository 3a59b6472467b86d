#pragma once

namespace helpers {

// Makes this process the parent of all that its children leave behind, so that endDescendants finds them.
void adoptDescendants();

// Kills whatever this process and its children have started, and returns when it is gone.
void endDescendants();

}  // namespace helpers
