// Input: the version list of the server.

#include <span>
#include <string>
#include <string_view>

#include "platform/property_list.h"
#include "support/version_rules.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;

void checkComparison(const std::string& version) {
  const std::string highest = "9223372036854775807.9223372036854775807.9223372036854775807";
  require(!isNewerVersion(version, version), "no version is newer than itself");
  require(!isNewerVersion(highest, version), "none is newer than the highest");
  for (const char* const other : {"", "0.0.1", "1.2.3", "-1"}) {
    require(!isNewerVersion(version, other) || !isNewerVersion(other, version),
            "of two versions one at most is newer");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string body(data, data + size);
  const auto version = versionInList(body);
  const auto list = platform::parsePropertyList(std::as_bytes(std::span(body)));
  const auto* entry = list ? list->find("version") : nullptr;
  const auto* text = entry == nullptr ? nullptr : entry->as<std::string>();
  require(version.has_value() == (text != nullptr), "a version is the string of its key");
  if (!version) return 0;
  require(*version == *text, "the version is read verbatim");
  checkComparison(*version);
  return 0;
}
