// Input: the banner list of the server. The chosen banner must be an entry of the list, the fetched path must
// lie in the banner folder, and the opened address must be a link.

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string>

#include "platform/property_list.h"
#include "support/address.h"
#include "support/server_content.h"
#include "tests/fuzz/link_check.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;
using platform::PropertyList;

bool isString(const PropertyList* value, const std::string& text) {
  const auto* string = value == nullptr ? nullptr : value->as<std::string>();
  return string != nullptr && *string == text;
}

void checkPicture(const Banner& banner) {
  const auto path = bannerPath(banner);
  if (!path) return;
  require(path->starts_with("/product/nimba/banner/"), "a picture stands below the banners");
  require(isAddress(*path), "a picture's path is an address");
  require(isLink("https://www.tovalin.example" + *path), "a picture is asked for at a whole address");
}

void checkChoice(const PropertyList::Array& entries, const PropertyList& list, std::uint32_t random) {
  const auto banner = chosenBanner(list, random);
  if (!banner) return;
  const PropertyList& entry = entries.at(random % entries.size());
  require(isString(entry.find("file_name"), banner->fileName), "the name is that of the chosen entry");
  require(isString(entry.find("link"), banner->link), "the link is that of the chosen entry");
  checkPicture(*banner);
  fuzz::checkLink(banner->link);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto list = platform::parsePropertyList(std::as_bytes(std::span(data, size)));
  if (!list) return 0;
  const auto* entries = list->as<PropertyList::Array>();
  if (entries == nullptr || entries->empty()) {
    require(!chosenBanner(*list, 0), "an invalid list yields no banner");
    return 0;
  }
  for (std::uint32_t i = 0; i < std::min<std::size_t>(entries->size(), 8); ++i)
    checkChoice(*entries, *list, i);
  checkChoice(*entries, *list, std::numeric_limits<std::uint32_t>::max());
  return 0;
}
