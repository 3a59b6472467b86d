#pragma once

#include <string>
#include <string_view>

namespace tools {

// The property list that tells the newest released version.
[[nodiscard]] std::string versionList(std::string_view version);

}  // namespace tools
