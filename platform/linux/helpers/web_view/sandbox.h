#pragma once

#include <filesystem>

namespace helpers {

// Whether a web process can be locked in here, tried with the same programs and the same means: where it
// can't, the web engine would end this process. Takes some ten milliseconds. `runtimeFolder` is the one that
// the web process is to see.
[[nodiscard]] bool canLockInWebProcess(const std::filesystem::path& runtimeFolder);

}  // namespace helpers
