#pragma once

#include <string>

namespace helpers {

// The program of a bundle, or in a sentence for the user why there is none to start.
struct BundleProgram {
  std::string path;
  std::string problem;  // empty when there is a program
};

// Looks for Contents/MacOS/NAME, NAME being the bundle's; else for the only executable file there.
//
// A bundle that another user has put into a folder like /tmp is not taken: it would run as this user.
[[nodiscard]] BundleProgram findBundleProgram(const std::string& bundle);

}  // namespace helpers
