#pragma once

#include <string>

namespace tools {

// Writes the port and a line end into a file that appears whole, so that who waits for it never reads half a
// number. False with errno set on failure.
[[nodiscard]] bool writePortFile(const std::string& path, int port);

}  // namespace tools
