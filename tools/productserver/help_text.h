#pragma once

#include <string>

namespace tools {

// What --help shows.
[[nodiscard]] std::string helpText();

}  // namespace tools
