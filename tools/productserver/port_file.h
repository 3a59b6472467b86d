#pragma once

#include <string>

namespace tools {

// Writes the port and a line end to a file that appears atomically, so that a waiting process never reads a
// partial number. Returns false and sets errno on failure.
[[nodiscard]] bool writePortFile(const std::string& path, int port);

}  // namespace tools
