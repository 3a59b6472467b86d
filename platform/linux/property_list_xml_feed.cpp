#include "platform/linux/property_list_xml_feed.h"

#include <algorithm>
#include <utility>

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
  const std::string_view slice = text.substr(0, size);
  const std::size_t reference = slice.rfind('&');
  if (reference == std::string_view::npos || reference == 0 || slice.find(';', reference) < size)
    return slice;
  return slice.substr(0, reference);
}

}  // namespace

std::optional<std::string> XmlFeed::next() {
  if (inCharacterData_) return characterData();
  if (!skipHidden() || rest_.empty()) return std::nullopt;
  if (rest_.front() != '<') return text();
  documentTypeAllowed_ = false;
  if (!rest_.starts_with(characterDataStart)) return tag();
  rest_.remove_prefix(characterDataStart.size());
  inCharacterData_ = true;
  return characterData();
}

bool XmlFeed::onlyMiscellaneousLeft() {
  for (;;) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(blanks), rest_.size()));
    const std::size_t left = rest_.size();
    if (left == 0) return true;
    if (!skipHidden() || rest_.size() == left) return false;
  }
}

// False when what is to be skipped never ends, or stands where it may not.
bool XmlFeed::skipHidden() {
  for (;;) {
    if (rest_.starts_with("<!--")) {
      rest_.remove_prefix(4);
      if (!skipPast("-->")) return false;
    } else if (rest_.starts_with("<?")) {
      if (!skipPast("?>")) return false;
    } else if (rest_.starts_with("<!DOCTYPE")) {
      if (!std::exchange(documentTypeAllowed_, false) || !skipDocumentType()) return false;
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

// Finds its end by the nesting of its marks; the declarations in it are passed over unread.
bool XmlFeed::skipDocumentType() {
  rest_.remove_prefix(1);
  for (std::size_t depth = 0;;) {
    const std::size_t position = rest_.find_first_of("\"'<>[]");
    if (position == std::string_view::npos) return false;
    rest_.remove_prefix(position);
    if (rest_.starts_with("<!--") || rest_.starts_with("<?")) {
      if (!skipPast(rest_[1] == '!' ? "-->" : "?>")) return false;
      continue;
    }
    const char mark = rest_.front();
    rest_.remove_prefix(1);
    if (mark == '"' || mark == '\'') {
      if (!skipPast(std::string_view(&mark, 1))) return false;
    } else if (mark == '<' || mark == '[') {
      ++depth;
    } else if (depth > 0) {
      --depth;
    } else {
      return mark == '>';
    }
  }
}

std::optional<std::string> XmlFeed::tag() {
  char quote = 0;
  for (std::size_t i = 1; i < std::min(rest_.size(), longestTag); ++i) {
    const char c = rest_[i];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '>') {
      std::string tag(rest_.substr(0, i + 1));
      rest_.remove_prefix(tag.size());
      return tag;
    }
  }
  return std::nullopt;
}

// The parser hands text out when markup follows, so an empty comment makes it hand out each slice by itself.
std::optional<std::string> XmlFeed::text() {
  const std::string_view ahead = rest_.substr(0, sliceSize + 1);
  const std::string_view slice = sliceOf(ahead.substr(0, ahead.find('<')));
  rest_.remove_prefix(slice.size());
  return std::string(slice) + "<!---->";
}

// Each slice becomes a section of its own: the parser's time for one section grows with the square of its
// slices.
std::optional<std::string> XmlFeed::characterData() {
  const std::string_view ahead = rest_.substr(0, sliceSize + characterDataEnd.size());
  const std::size_t end = ahead.find(characterDataEnd);
  if (end == std::string_view::npos && ahead.size() == rest_.size()) return std::nullopt;
  const std::string_view slice = end == std::string_view::npos ? sliceOf(ahead) : ahead.substr(0, end);
  rest_.remove_prefix(slice.size());
  if (end != std::string_view::npos) {
    rest_.remove_prefix(characterDataEnd.size());
    inCharacterData_ = false;
  }
  return std::string(characterDataStart).append(slice).append(characterDataEnd);
}

}  // namespace platform
