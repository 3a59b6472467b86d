#include "platform/macos/system/bracket_escapes.h"

#include <algorithm>
#include <cstddef>

namespace platform {
namespace {

// Returns the offset of the first character behind scheme and authority, of which each may be missing.
std::size_t authorityEnd(std::string_view url) {
  const std::size_t colon = std::min(url.find_first_of(":/?#"), url.size());
  const std::size_t scheme = url.substr(colon).starts_with(':') ? colon + 1 : 0;
  if (!url.substr(scheme).starts_with("//")) return scheme;
  return std::min(url.find_first_of("/?#", scheme + 2), url.size());
}

}  // namespace

std::string withEscapedBrackets(std::string_view url) {
  const std::size_t end = authorityEnd(url);
  std::string escaped(url.substr(0, end));
  for (const char character : url.substr(end)) {
    if (character == '[') {
      escaped += "%5B";
    } else if (character == ']') {
      escaped += "%5D";
    } else {
      escaped += character;
    }
  }
  return escaped;
}

}  // namespace platform
