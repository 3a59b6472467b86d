#pragma once

#include <string>

namespace tools {

// Returns the text of --help.
[[nodiscard]] std::string helpText();

}  // namespace tools
