#include <algorithm>

#include "platform/portable/property_lists/property_list_escapes.h"
#include "platform/portable/property_lists/property_list_readers.h"

namespace platform {
namespace {

bool isWordCharacter(char c) {
  constexpr std::string_view marks = "_$/:.-";
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         marks.find(c) != marks.npos;
}

// Returns the length of the white space at the start of `text`: the controls from tab to carriage return, the
// blank, and the line and paragraph separators U+2028 and U+2029.
std::size_t blankSize(std::string_view text) {
  constexpr std::string_view lineSeparator = "\xE2\x80\xA8", paragraphSeparator = "\xE2\x80\xA9";
  if (text.empty()) return 0;
  if (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r')) return 1;
  if (text.starts_with(lineSeparator) || text.starts_with(paragraphSeparator)) return lineSeparator.size();
  return 0;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// Parses the text of one list in one pass.
class OldTextReader {
 public:
  explicit OldTextReader(std::string_view text) : rest_(text) {}

  std::optional<PropertyList> object();
  // Parses the keys and values of a dictionary without braces.
  std::optional<PropertyList> stringsFile();
  // Skips white space and comments. Returns whether text is left; also false for an unterminated comment.
  bool skipBlanks();
  // Returns whether the whole text has been parsed.
  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

 private:
  using Entries = std::vector<PropertyList::Entry>;

  bool skipComment();
  bool accept(char c);
  bool pair(Entries& entries);
  std::optional<PropertyList> array();
  std::optional<PropertyList> dictionary();
  std::optional<PropertyList> pairs();
  std::optional<PropertyList> data();
  std::optional<std::string> string();
  std::optional<std::string_view> quoted();
  std::string_view word();

  std::string_view rest_;
  ListBounds bounds_;
};

bool OldTextReader::skipBlanks() {
  while (!rest_.empty()) {
    if (const std::size_t size = blankSize(rest_); size > 0) {
      rest_.remove_prefix(size);
    } else if (rest_.starts_with("//")) {
      rest_.remove_prefix(std::min(rest_.find_first_of("\n\r"), rest_.size()));
    } else if (rest_.starts_with("/*")) {
      if (!skipComment()) return false;
    } else {
      return true;
    }
  }
  return false;
}

// Leaves an unterminated comment unread: its start begins no value and is not the end of the text either.
bool OldTextReader::skipComment() {
  constexpr std::string_view opening = "/*", closing = "*/";
  const std::size_t end = rest_.find(closing, opening.size());
  if (end == std::string_view::npos) return false;
  rest_.remove_prefix(end + closing.size());
  return true;
}

bool OldTextReader::accept(char c) {
  if (!skipBlanks() || rest_.front() != c) return false;
  rest_.remove_prefix(1);
  return true;
}

std::optional<PropertyList> OldTextReader::object() {
  if (!bounds_.takeObjects()) return std::nullopt;
  if (accept('{')) return dictionary();
  if (accept('(')) return array();
  if (accept('<')) return data();
  auto text = string();
  if (!text) return std::nullopt;
  return PropertyList(std::move(*text));
}

std::optional<PropertyList> OldTextReader::array() {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep()) return std::nullopt;
  PropertyList::Array items;
  while (!accept(')')) {
    auto item = object();
    if (!item) return std::nullopt;
    items.push_back(std::move(*item));
    if (accept(',')) continue;
    if (!accept(')')) return std::nullopt;
    break;
  }
  return PropertyList(std::move(items));
}

std::optional<PropertyList> OldTextReader::dictionary() {
  auto entries = pairs();
  if (!entries || !accept('}')) return std::nullopt;
  return entries;
}

std::optional<PropertyList> OldTextReader::stringsFile() {
  if (!bounds_.takeObjects()) return std::nullopt;
  return pairs();
}

// Parses pairs up to a closing brace or the end of the text.
std::optional<PropertyList> OldTextReader::pairs() {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep()) return std::nullopt;
  Entries entries;
  while (skipBlanks() && rest_.front() != '}') {
    if (!pair(entries)) return std::nullopt;
  }
  return PropertyList(PropertyList::Dictionary(std::move(entries), PropertyList::Dictionary::Keep::Last));
}

// A key without a value has itself as its value.
bool OldTextReader::pair(Entries& entries) {
  if (!bounds_.takeObjects()) return false;
  auto key = string();
  if (!key) return false;
  if (accept(';')) {
    if (!bounds_.takeObjects() || !bounds_.takeBytes(key->size())) return false;
    entries.push_back({*key, PropertyList(*key)});
    return true;
  }
  if (!accept('=')) return false;
  auto value = object();
  if (!value || !accept(';')) return false;
  entries.push_back({std::move(*key), std::move(*value)});
  return true;
}

// White space may separate bytes, but not the digits of one.
std::optional<PropertyList> OldTextReader::data() {
  PropertyList::Data bytes;
  while (!rest_.starts_with('>')) {
    if (const std::size_t size = blankSize(rest_); size > 0) {
      rest_.remove_prefix(size);
      continue;
    }
    if (rest_.size() < 2 || !bounds_.takeBytes(1)) return std::nullopt;
    const int high = hexValue(rest_[0]), low = hexValue(rest_[1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::byte>(high << 4 | low));
    rest_.remove_prefix(2);
  }
  rest_.remove_prefix(1);
  return PropertyList(std::move(bytes));
}

std::optional<std::string> OldTextReader::string() {
  if (!skipBlanks()) return std::nullopt;
  std::optional<std::string> text;
  if (rest_.front() == '"' || rest_.front() == '\'') {
    const auto inside = quoted();
    if (inside) text = unescapeListText(*inside);
  } else if (const std::string_view plain = word(); !plain.empty()) {
    text = plain;
  }
  if (!text || !bounds_.takeBytes(text->size())) return std::nullopt;
  return text;
}

// Returns the text up to the next quote of the same kind that no backslash precedes.
std::optional<std::string_view> OldTextReader::quoted() {
  const char stops[] = {rest_.front(), '\\'};
  for (std::size_t end = 1;; end += 2) {
    end = rest_.find_first_of(std::string_view(stops, sizeof stops), end);
    if (end == std::string_view::npos) return std::nullopt;
    if (rest_[end] == '\\') continue;
    const std::string_view inside = rest_.substr(1, end - 1);
    rest_.remove_prefix(end + 1);
    return inside;
  }
}

std::string_view OldTextReader::word() {
  const auto end = std::ranges::find_if_not(rest_, isWordCharacter);
  const std::string_view word = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
  rest_.remove_prefix(word.size());
  return word;
}

}  // namespace

std::optional<PropertyList> readOldTextList(std::string_view text) {
  OldTextReader reader(text);
  auto list = reader.object();
  if (!list) return std::nullopt;
  reader.skipBlanks();
  if (reader.atEnd()) return list;

  // A string followed by more text is the first key of a strings file.
  if (list->as<std::string>() == nullptr) return std::nullopt;
  OldTextReader strings(text);
  auto entries = strings.stringsFile();
  if (!strings.atEnd()) return std::nullopt;
  return entries;
}

}  // namespace platform
