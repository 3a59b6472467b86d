#include "tools/productserver/content_type.h"

#include <algorithm>
#include <array>

namespace tools {
namespace {

struct Type {
  std::string_view ending;
  std::string_view name;
};

constexpr std::array kTypes = {
    Type{".css", "text/css; charset=utf-8"},
    Type{".gif", "image/gif"},
    Type{".html", "text/html; charset=utf-8"},
    Type{".jpg", "image/jpeg"},
    Type{".js", "text/javascript; charset=utf-8"},
    Type{".plist", "application/x-plist"},
    Type{".png", "image/png"},
    Type{".svg", "image/svg+xml"},
    Type{".txt", "text/plain; charset=utf-8"},
    Type{".xml", "application/xml"},
};

}  // namespace

std::string contentType(std::string_view path) {
  const auto found = std::find_if(kTypes.begin(), kTypes.end(),
                                  [path](const Type& type) { return path.ends_with(type.ending); });
  return std::string(found == kTypes.end() ? "application/octet-stream" : found->name);
}

}  // namespace tools
