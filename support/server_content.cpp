#include "support/server_content.h"

#include "platform/text_prefix.h"
#include "support/address.h"

namespace {

using platform::PropertyList;

std::optional<NoticeEntry> noticeEntry(const PropertyList& notice, std::string_view key) {
  const PropertyList* entry = notice.find(key);
  if (entry == nullptr) return std::nullopt;
  const std::string* subject = entry->textAt("subject");
  const std::string* link = entry->textAt("link");
  if (subject == nullptr || link == nullptr) return std::nullopt;
  return NoticeEntry{*subject, *link};
}

// Returns a text that begins with a URL's authority without the "user:password@" before its host, which could
// look like a host.
std::string_view withoutUserInformation(std::string_view authorityAndPath) {
  const std::string_view authority = authorityAndPath.substr(0, authorityAndPath.find_first_of("/?#"));
  const std::size_t at = authority.rfind('@');
  return at == std::string_view::npos ? authorityAndPath : authorityAndPath.substr(at + 1);
}

}  // namespace

std::optional<std::array<NoticeEntry, 2>> noticeEntries(const PropertyList& notice) {
  auto first = noticeEntry(notice, "notice_1");
  auto second = noticeEntry(notice, "notice_2");
  if (!first || !second) return std::nullopt;
  return std::array{*std::move(first), *std::move(second)};
}

std::string shownSubject(std::string_view subject) {
  constexpr std::size_t maxCharacters = 500, maxCodePoints = 2000;
  return platform::textPrefix(subject, maxCharacters, maxCodePoints);
}

std::optional<Banner> chosenBanner(const PropertyList& list, std::uint32_t random) {
  const auto* entries = list.as<PropertyList::Array>();
  if (entries == nullptr || entries->empty()) return std::nullopt;
  const PropertyList& entry = (*entries)[std::uint64_t{random} % entries->size()];
  const std::string* fileName = entry.textAt("file_name");
  const std::string* link = entry.textAt("link");
  if (fileName == nullptr || link == nullptr) return std::nullopt;
  return Banner{*fileName, *link};
}

std::string bannerLabel(std::string_view link) {
  constexpr std::size_t maxCharacters = 100;
  if (!isLink(link)) return "Banner";
  const std::string_view place = withoutUserInformation(link.substr(link.find("//") + 2));
  return "Banner, opens " + std::string(place.substr(0, maxCharacters));
}

std::optional<std::string> bannerPath(const Banner& banner) {
  if (!banner.fileName.empty() && !isAddress(banner.fileName)) return std::nullopt;
  return "/product/nimba/banner/" + banner.fileName;  // frozen: doc/compatibility.md
}
