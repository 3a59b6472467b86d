#pragma once

#include <optional>
#include <string>
#include <string_view>

// Fetches `path` from the product server, bypassing caches. Returns the body whatever its status code; an
// error page is not a valid property list anyway. Returns nullopt if nothing is received for three seconds or
// the reply is incomplete. Blocks the caller. Thread-safe.
[[nodiscard]] std::optional<std::string> fetchFromServer(std::string_view path);
