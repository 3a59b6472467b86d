#pragma once

#include <filesystem>

namespace helpers {

// Returns whether the sandbox of the web process works here, by a trial run of the same programs with the
// same options: without a working sandbox, the engine would abort this process. Takes about 10 ms.
// `runtimeFolder` is the folder that the web process is to see.
[[nodiscard]] bool canLockInWebProcess(const std::filesystem::path& runtimeFolder);

}  // namespace helpers
