#include "platform/portable/property_lists/property_list_xml_markup.h"

#include <algorithm>
#include <cstddef>

namespace platform {
namespace {

constexpr std::string_view xmlBlanks = " \t\r\n";
constexpr std::string_view commentStart = "<!--", commentEnd = "-->", emptyComment = "<!---->";
constexpr std::string_view instructionStart = "<?", instructionEnd = "?>";
constexpr std::string_view characterDataStart = "<![CDATA[", characterDataEnd = "]]>";
constexpr std::string_view documentTypeStart = "<!DOCTYPE";
}  // namespace

bool XmlMarkup::skipProlog() {
  for (bool documentTypeSeen = false;;) {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(xmlBlanks), rest_.size()));
    if (atHidden()) {
      if (!skipHidden()) return false;
    } else if (rest_.starts_with(documentTypeStart)) {
      if (documentTypeSeen || !skipDocumentType()) return false;
      documentTypeSeen = true;
    } else {
      return true;
    }
  }
}

std::optional<std::string_view> XmlMarkup::next() {
  if (atHidden()) {
    if (!skipHidden()) return std::nullopt;
    return emptyComment;
  }
  const std::string_view from = rest_;
  if (!skipVisible()) return std::nullopt;
  return from.substr(0, from.size() - rest_.size());
}

// Skips text and tags up to the next comment, processing instruction or the like; most lists have none.
bool XmlMarkup::skipVisible() {
  if (rest_.find('!') == std::string_view::npos && rest_.find('?') == std::string_view::npos) rest_ = {};
  while (!rest_.empty() && !atHidden()) {
    if (!rest_.starts_with(characterDataStart)) {
      rest_.remove_prefix(std::min(rest_.find('<', 1), rest_.size()));
    } else if (!skipPast(characterDataEnd)) {
      return false;
    }
  }
  return true;
}

bool XmlMarkup::atHidden() const {
  return rest_.starts_with(commentStart) || rest_.starts_with(instructionStart);
}

bool XmlMarkup::skipHidden() {
  if (rest_.starts_with(instructionStart)) return skipPast(instructionEnd);
  rest_.remove_prefix(commentStart.size());
  return skipPast(commentEnd);
}

bool XmlMarkup::skipPast(std::string_view end) {
  const std::size_t position = rest_.find(end);
  if (position == std::string_view::npos) return false;
  rest_.remove_prefix(position + end.size());
  return true;
}

// Finds the end by the nesting of brackets, without parsing the declarations inside.
bool XmlMarkup::skipDocumentType() {
  rest_.remove_prefix(1);
  for (std::size_t depth = 0;;) {
    const std::size_t position = rest_.find_first_of("\"'<>[]");
    if (position == std::string_view::npos) return false;
    rest_.remove_prefix(position);
    if (atHidden()) {
      if (!skipHidden()) return false;
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

}  // namespace platform
