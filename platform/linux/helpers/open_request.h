#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "platform/linux/helpers/helper_program.h"

namespace helpers {

// Request to start the program of this bundle with these arguments.
struct OpenBundle {
  std::string path;
  Arguments arguments;
};

// Request to open a URL, or a file, with the desktop's program for it.
struct OpenUrl {
  std::string url;
};
struct OpenFile {
  std::string path;
};

using OpenRequest = std::variant<ShowUsage, Refusal, OpenBundle, OpenUrl, OpenFile>;

[[nodiscard]] OpenRequest parseOpenRequest(const Arguments& arguments);

// Returns NAME for a path that ends in NAME.app, with or without trailing slashes; empty for other paths.
[[nodiscard]] std::string bundleName(std::string_view path);

}  // namespace helpers
