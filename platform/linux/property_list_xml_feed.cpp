#include "platform/linux/property_list_xml_feed.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view characterDataStart = "<![CDATA[", characterDataEnd = "]]>";
constexpr std::size_t sliceSize = 4096, longestTag = 1024;

bool isContinuation(char c) {
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// The start of `text` that makes a slice: no character, line end or reference is cut in two.
std::string_view sliceOf(std::string_view text) {
  if (text.size() <= sliceSize) return text;
  std::size_t size = sliceSize;
  while (isContinuation(text[size])) --size;
  if (text[size - 1] == '\r') --size;
  const std::size_t reference = text.rfind('&', size - 1);
  const bool cutsReference = reference != std::string_view::npos &&
                             text.substr(0, size).find(';', reference) == std::string_view::npos;
  return text.substr(0, cutsReference && reference > 0 ? reference : size);
}

}  // namespace

std::optional<std::string> XmlFeed::next() {
  if (inCharacterData_) return characterData();
  if (!skipHidden() || rest_.empty()) return std::nullopt;
  if (rest_.starts_with(characterDataStart)) {
    rest_.remove_prefix(characterDataStart.size());
    return characterData();
  }
  return rest_.front() == '<' ? tag() : text();
}

bool XmlFeed::onlyMiscellaneousLeft() {
  documentTypeAllowed_ = false;
  while (const auto slice = next()) {
    if (slice->find_first_not_of(blanks) != std::string::npos) return false;
  }
  return rest_.empty();
}

// False when what is to be skipped never ends.
bool XmlFeed::skipHidden() {
  for (;;) {
    if (rest_.starts_with("<!--")) {
      rest_.remove_prefix(4);
      if (!skipPast("-->")) return false;
    } else if (rest_.starts_with("<?")) {
      if (!skipPast("?>")) return false;
    } else if (rest_.starts_with("<!DOCTYPE")) {
      if (!documentTypeAllowed_ || !skipDocumentType()) return false;
      documentTypeAllowed_ = false;
    } else {
      return true;
    }
  }
}

bool XmlFeed::skipPast(std::string_view end) {
  const std::size_t position = rest_.find(end);
  if (position == std::string_view::npos) return false;
  rest_.remove_prefix(position + end.size());
  return true;
}

// Only the nesting of its marks matters; declarations inside it are passed over.
bool XmlFeed::skipDocumentType() {
  bool inSubset = false;
  for (;;) {
    const std::size_t mark = rest_.find_first_of("\"'[]<>", 1);
    if (mark == std::string_view::npos) return false;
    rest_.remove_prefix(mark);
    if (rest_.starts_with("<!--")) {
      rest_.remove_prefix(3);
      if (!skipPast("-->")) return false;
      continue;
    }
    switch (rest_.front()) {
      case '"':
      case '\'':
        break;
    }
    (void)inSubset;
  }
}

}  // namespace platform
