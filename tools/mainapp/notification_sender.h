#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// Writes the bytes of `text` to the FIFO at `path` in one write(2), without waiting for a reader. Then waits
// up to one second until they have been read, because the agent treats messages read together as one. Returns
// nullopt on success, else the error text. SIGPIPE must be ignored.
[[nodiscard]] std::optional<std::string> sendNotification(const std::string& path, std::string_view text);

}  // namespace tools
