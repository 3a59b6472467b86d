#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Cuts the text of an XML list into the slices that a pull parser is given one after the other, so that the
// parser never has more than a few kilobytes in hand. It keeps from the parser what could cost more: the
// document type, which can declare nothing that a list needs, comments and processing instructions, and tags
// of a size that no list has (the parser compares each attribute with every other).
class XmlFeed {
 public:
  // `text` must outlive this object; valid UTF-8.
  explicit XmlFeed(std::string_view text) : rest_(text) {}

  // The next slice; nothing at the end of the text and where its markup is broken.
  [[nodiscard]] std::optional<std::string> next();

  // What is left is white space and comments up to the end of the text.
  [[nodiscard]] bool onlyMiscellaneousLeft();

 private:
  bool skipHidden();
  bool skipPast(std::string_view end);
  bool skipDocumentType();
  std::optional<std::string> tag();
  std::optional<std::string> text();
  std::optional<std::string> characterData();

  std::string_view rest_;
  bool documentTypeAllowed_ = true;
  bool inCharacterData_ = false;
};

}  // namespace platform
