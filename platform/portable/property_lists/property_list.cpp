#include "platform/property_list.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "platform/portable/property_lists/property_list_readers.h"

namespace platform {
namespace {

bool isBinary(std::span<const std::byte> bytes) {
  return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).starts_with("bplist0");
}

bool looksLikeXml(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '<';
}

bool isSortedWithoutRepeats(const std::vector<PropertyList::Entry>& entries) {
  return std::ranges::adjacent_find(entries, std::ranges::greater_equal(), &PropertyList::Entry::key) ==
         entries.end();
}

}  // namespace

PropertyList::Dictionary::Dictionary() = default;
PropertyList::Dictionary::Dictionary(const Dictionary& other) = default;
PropertyList::Dictionary::Dictionary(Dictionary&& other) noexcept = default;
PropertyList::Dictionary& PropertyList::Dictionary::operator=(const Dictionary& other) = default;
PropertyList::Dictionary& PropertyList::Dictionary::operator=(Dictionary&& other) noexcept = default;
PropertyList::Dictionary::~Dictionary() = default;

bool PropertyList::Dictionary::operator==(const Dictionary& other) const {
  return entries_ == other.entries_;
}

PropertyList::Dictionary::Dictionary(std::initializer_list<Entry> entries)
    : Dictionary(std::vector(entries), Keep::First) {}

// Most lists are sorted by key.
PropertyList::Dictionary::Dictionary(std::vector<Entry> entries, Keep keep) : entries_(std::move(entries)) {
  if (isSortedWithoutRepeats(entries_)) return;
  if (keep == Keep::Last) std::ranges::reverse(entries_);
  std::ranges::stable_sort(entries_, {}, &Entry::key);
  const auto isRepeat = [](const Entry& a, const Entry& b) { return a.key == b.key; };
  entries_.erase(std::unique(entries_.begin(), entries_.end(), isRepeat), entries_.end());
}

const PropertyList* PropertyList::Dictionary::find(std::string_view key) const {
  const auto entry = std::ranges::lower_bound(entries_, key, {}, &Entry::key);
  return entry == entries_.end() || entry->key != key ? nullptr : &entry->value;
}

const PropertyList* PropertyList::find(std::string_view key) const {
  const auto* dictionary = as<Dictionary>();
  return dictionary == nullptr ? nullptr : dictionary->find(key);
}

const std::string* PropertyList::textAt(std::string_view key) const {
  const PropertyList* entry = find(key);
  return entry == nullptr ? nullptr : entry->as<std::string>();
}

std::optional<PropertyList> parsePropertyList(std::span<const std::byte> bytes) {
  if (bytes.size() > propertyListMaxBytes) return std::nullopt;
  if (isBinary(bytes)) return readBinaryList(bytes);

  const auto text = decodeListText(bytes);
  if (!text) return std::nullopt;
  if (looksLikeXml(text->view())) {
    if (auto list = readXmlList(text->view())) return list;
  }
  // Also data that looks like XML: data in the old text format begins with '<', too.
  return readOldTextList(text->view());
}

}  // namespace platform
