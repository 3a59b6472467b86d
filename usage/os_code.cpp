#include "usage/os_code.h"

#include <algorithm>

#include "platform/process_info.h"
#include "usage/record_format.h"
#include "usage/version_text.h"

namespace {

using record_format::highestOsCode;
using record_format::lowestOsCode;

// Returns the dotted release number: the word after "Version", or the whole text without that word.
std::string_view releaseIn(std::string_view versionText) {
  const auto pieces = splitAtEach(versionText, " ()");
  const auto word = std::ranges::find(pieces, "Version");
  if (word == pieces.end() || std::next(word) == pieces.end()) return versionText;
  return *std::next(word);
}

}  // namespace

std::uint8_t osCodeFor(std::string_view versionText) {
  const auto parts = splitAtEach(releaseIn(versionText), ".");
  const std::int64_t major = integerValue(parts[0]);
  const std::int64_t minor = parts.size() > 1 ? integerValue(parts[1]) : 0;
  if (major > 10) return highestOsCode;
  if (major < 10) return lowestOsCode;
  // Clamped before subtracting 9, because `minor` may be the lowest 64-bit integer.
  const std::int64_t release = std::clamp<std::int64_t>(minor, 9, 9 + highestOsCode - lowestOsCode);
  return static_cast<std::uint8_t>(lowestOsCode + (release - 9));
}

std::uint8_t GetOSVersion() {
  return osCodeFor(platform::operatingSystemVersionString());
}
