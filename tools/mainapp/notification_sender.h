#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// Writes the bytes of `text` into the FIFO at `path` without waiting for a reader, in one write of one open
// and close. Then waits up to a second until the reader has taken them, because messages that are read
// together are one message to the agent. Nothing on success, else the reason. SIGPIPE must be ignored.
[[nodiscard]] std::optional<std::string> sendNotification(const std::string& path, std::string_view text);

}  // namespace tools
