#include "platform/property_list.h"

#include "platform/portable/property_list_readers.h"

namespace platform {
namespace {

bool isBinary(std::span<const std::byte> bytes) {
  return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).starts_with("bplist0");
}

bool looksLikeXml(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string_view::npos && text[first] == '<';
}

}  // namespace

const PropertyList* PropertyList::find(std::string_view key) const {
  const auto* dictionary = as<Dictionary>();
  if (dictionary == nullptr) return nullptr;
  const auto entry = dictionary->find(key);
  return entry == dictionary->end() ? nullptr : &entry->second;
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
  // Also after XML: data in the old text form begins with '<', too.
  return readOldTextList(text->view());
}

}  // namespace platform
