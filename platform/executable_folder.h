#pragma once

#include <filesystem>

namespace platform {

// Returns the folder of the running program with links resolved, or an empty path on error. Thread-safe.
[[nodiscard]] std::filesystem::path executableFolder();

}  // namespace platform
