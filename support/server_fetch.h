#pragma once

#include <optional>
#include <string>
#include <string_view>

// The body of what the product server has at `path`, fetched anew past every cache; nothing when the server
// was silent for three seconds or no whole reply came. Whatever the reply's status: an error page is no
// property list. Blocks its caller; any thread.
[[nodiscard]] std::optional<std::string> fetchFromServer(std::string_view path);
