#pragma once

#include <string>
#include <string_view>

namespace tools {

// Returns the MIME type for the suffix of `path`.
[[nodiscard]] std::string contentType(std::string_view path);

}  // namespace tools
