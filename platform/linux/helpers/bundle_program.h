#pragma once

#include <string>

namespace helpers {

// The executable of a bundle, or a message for the user why there is none to start.
struct BundleProgram {
  std::string path;
  std::string problem;  // empty on success
};

// Looks for Contents/MacOS/NAME, where NAME is the bundle's name, else for the only executable file in that
// folder. Follows links.
//
// Refuses a bundle that another user has placed in a world-writable sticky folder such as /tmp, because its
// program would run as this user.
[[nodiscard]] BundleProgram findBundleProgram(const std::string& bundle);

}  // namespace helpers
