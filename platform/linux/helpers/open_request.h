#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Start the program of this bundle with these arguments.
struct OpenBundle {
  std::string path;
  Arguments arguments;
};

// Hand this to the program that the user's desktop has for it.
struct OpenUrl {
  std::string url;
};
struct OpenFile {
  std::string path;
};

using OpenRequest = std::variant<ShowUsage, Refusal, OpenBundle, OpenUrl, OpenFile>;

[[nodiscard]] OpenRequest parseOpenRequest(const Arguments& arguments);

// The NAME of a path ending in NAME.app, with or without slashes behind it; empty for any other path.
[[nodiscard]] std::string bundleName(std::string_view path);

}  // namespace helpers
