#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tools {

// What is read of one file at most, far beyond a day's records: a device without an end must not take all
// memory.
inline constexpr std::size_t kMostInput = std::size_t{1} << 30;

// All bytes of the file at `path`; "-" is the standard input. Waits for whoever writes into a pipe. Nothing
// when it can't be read or is too large, with the reason.
[[nodiscard]] std::optional<std::vector<char>> readInput(const std::string& path, std::string& reason);

}  // namespace tools
