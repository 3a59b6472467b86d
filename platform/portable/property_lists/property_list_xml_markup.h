#pragma once

#include <optional>
#include <string_view>

namespace platform {

// Splits the text of an XML list into the pieces for the parser, without copying it. Omits the document type,
// so that no entity or attribute default can be declared, and replaces comments and processing instructions
// by empty comments, because existing lists have "--" in theirs, which XML forbids.
class XmlMarkup {
 public:
  // `text` must outlive this object and the results of next().
  explicit XmlMarkup(std::string_view text) : rest_(text) {}

  // Skips what may precede the root element: white space, comments, processing instructions and one document
  // type. Returns false if one of them is unterminated. Call once, first.
  [[nodiscard]] bool skipProlog();

  // Returns the next piece, an empty one at the end of the text, nullopt for unterminated markup.
  [[nodiscard]] std::optional<std::string_view> next();

  // Returns whether next() has returned the whole text.
  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

 private:
  [[nodiscard]] bool atHidden() const;
  [[nodiscard]] bool skipHidden();
  [[nodiscard]] bool skipPast(std::string_view end);
  [[nodiscard]] bool skipDocumentType();
  [[nodiscard]] bool skipVisible();

  std::string_view rest_;
};

}  // namespace platform
