#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tools {

// Receives each log line. Called on the server's threads, possibly concurrently.
using LogLine = std::function<void(const std::string& line)>;

// Returns the log line for a request: time, method, target and outcome.
[[nodiscard]] std::string requestLine(std::string_view method, std::string_view target,
                                      std::string_view outcome);

}  // namespace tools
