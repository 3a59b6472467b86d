#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace tools {

// Gets each line to be shown; called on the server's threads, several at a time.
using LogLine = std::function<void(const std::string& line)>;

// The line for a request: the time, the method, the target and what came of it.
[[nodiscard]] std::string requestLine(std::string_view method, std::string_view target,
                                      std::string_view outcome);

}  // namespace tools
