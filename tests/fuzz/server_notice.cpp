// Input: the notice of the server. The shown texts must be strings of the notice, and the opened addresses
// must be links.

#include <span>
#include <string>

#include "platform/property_list.h"
#include "support/server_content.h"
#include "tests/fuzz/link_check.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;
using platform::PropertyList;

// Returns whether the entry is a dictionary with both strings, equal to `subject` and `link` unless these are
// null.
bool isComplete(const PropertyList* entry, const std::string* subject, const std::string* link) {
  const PropertyList* const ownSubject = entry == nullptr ? nullptr : entry->find("subject");
  const PropertyList* const ownLink = entry == nullptr ? nullptr : entry->find("link");
  if (ownSubject == nullptr || ownLink == nullptr) return false;
  if (ownSubject->as<std::string>() == nullptr || ownLink->as<std::string>() == nullptr) return false;
  if (subject == nullptr || link == nullptr) return true;
  return *ownSubject == PropertyList(*subject) && *ownLink == PropertyList(*link);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto list = platform::parsePropertyList(std::as_bytes(std::span(data, size)));
  if (!list) return 0;
  const PropertyList* const first = list->find("notice_1");
  const PropertyList* const second = list->find("notice_2");
  const auto entries = noticeEntries(*list);
  require(
      entries.has_value() == (isComplete(first, nullptr, nullptr) && isComplete(second, nullptr, nullptr)),
      "a notice is two complete entries");
  if (!entries) return 0;
  require(isComplete(first, &(*entries)[0].subject, &(*entries)[0].link), "the first entry is the first");
  require(isComplete(second, &(*entries)[1].subject, &(*entries)[1].link), "the second entry is the second");
  for (const NoticeEntry& entry : *entries) fuzz::checkLink(entry.link);
  return 0;
}
