#pragma once

#include <string>
#include <string_view>

namespace tools {

// The MIME type for the file at `path`, told by the ending of its name.
[[nodiscard]] std::string contentType(std::string_view path);

}  // namespace tools
