#pragma once

namespace helpers {

// Makes this process the subreaper of its descendants, so that endDescendants finds orphans too.
void adoptDescendants();

// Kills and reaps all descendants of this process. Blocks until they are gone. Requires adoptDescendants.
void endDescendants();

}  // namespace helpers
