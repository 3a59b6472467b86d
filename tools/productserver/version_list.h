#pragma once

#include <string>
#include <string_view>

namespace tools {

// Returns the property list with the newest released version.
[[nodiscard]] std::string versionList(std::string_view version);

}  // namespace tools
