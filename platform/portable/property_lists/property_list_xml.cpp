#include <expat.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "platform/portable/property_lists/property_list_readers.h"
#include "platform/portable/property_lists/property_list_scalars.h"
#include "platform/portable/property_lists/property_list_xml_markup.h"

namespace platform {
namespace {

// In bytes. No list has a longer tag with attributes, and Expat stores each attribute of one.
constexpr int maxTagSize = 4096;

enum class Element { Plist, Dict, Array, True, False, Data, Integer, Real, Date, String, Key };

std::optional<Element> elementOf(std::string_view name) {
  if (name == "key") return Element::Key;
  if (name == "string") return Element::String;
  if (name == "true") return Element::True;
  if (name == "false") return Element::False;
  if (name == "integer") return Element::Integer;
  if (name == "dict") return Element::Dict;
  if (name == "array") return Element::Array;
  if (name == "real") return Element::Real;
  if (name == "date") return Element::Date;
  if (name == "data") return Element::Data;
  if (name == "plist") return Element::Plist;
  return std::nullopt;
}

bool isContainer(Element element) {
  return element == Element::Plist || element == Element::Dict || element == Element::Array;
}

bool isBlank(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; });
}

// Builds the list from the parser's events. Each handler returns false if the text is not a list or exceeds
// the bounds.
class XmlListBuilder {
 public:
  bool start(std::string_view name);
  bool text(std::string_view piece);
  bool end();
  // Returns the list once every element has ended.
  std::optional<PropertyList> take() { return std::exchange(root_, std::nullopt); }

 private:
  // A container whose end tag is pending. <plist> is one that holds a single value.
  struct Open {
    Element element;
    PropertyList::Array items = {};
    std::vector<PropertyList::Entry> entries = {};
    // The value of the last entry is pending.
    bool awaitsValue = false;
  };

  [[nodiscard]] bool mayStart(Element element) const;
  [[nodiscard]] bool isTooDeep() const;
  bool startLeaf(Element element);
  bool endLeaf();
  bool endContainer();
  void addKey();
  bool addLeaf(Element element);
  template <typename T>
  bool add(T&& value);
  template <typename T>
  bool addParsed(std::optional<T> value);
  PropertyList& place();

  std::vector<Open> open_;
  std::optional<Element> leaf_;
  std::string text_;
  PropertyList::Data data_;
  std::optional<Base64Decoder> decoder_;
  std::optional<PropertyList> root_;
  ListBounds bounds_;
};

bool XmlListBuilder::start(std::string_view name) {
  const auto element = elementOf(name);
  if (!element || leaf_ || !mayStart(*element)) return false;
  if (*element != Element::Plist && !bounds_.takeObjects()) return false;
  if (!isContainer(*element)) return startLeaf(*element);
  open_.push_back({.element = *element});
  return !isTooDeep();
}

// The root element is <plist> or, without one, a value.
bool XmlListBuilder::mayStart(Element element) const {
  if (open_.empty()) return element != Element::Key;
  const Open& parent = open_.back();
  if (element == Element::Plist) return false;
  if (parent.element == Element::Dict) return (element == Element::Key) != parent.awaitsValue;
  return element != Element::Key && (parent.element == Element::Array || !root_);
}

bool XmlListBuilder::isTooDeep() const {
  const std::size_t depth = open_.size() - (open_.front().element == Element::Plist ? 1 : 0);
  return depth > propertyListMaxDepth;
}

bool XmlListBuilder::startLeaf(Element element) {
  leaf_ = element;
  text_.clear();
  data_.clear();
  if (element == Element::Data) decoder_.emplace(data_);
  return true;
}

bool XmlListBuilder::text(std::string_view piece) {
  if (!leaf_ || leaf_ == Element::True || leaf_ == Element::False) return isBlank(piece);
  if (leaf_ != Element::Data) {
    if (!bounds_.takeBytes(piece.size())) return false;
    text_ += piece;
    return true;
  }
  const std::size_t before = data_.size();
  return decoder_->add(piece) && bounds_.takeBytes(data_.size() - before);
}

bool XmlListBuilder::end() {
  return leaf_ ? endLeaf() : endContainer();
}

bool XmlListBuilder::endLeaf() {
  const Element element = *std::exchange(leaf_, std::nullopt);
  if (element != Element::Key) return addLeaf(element);
  addKey();
  return true;
}

void XmlListBuilder::addKey() {
  Open& dictionary = open_.back();
  dictionary.entries.emplace_back().key = std::move(text_);
  dictionary.awaitsValue = true;
}

bool XmlListBuilder::addLeaf(Element element) {
  switch (element) {
    case Element::True:
    case Element::False:
      return add(element == Element::True);
    case Element::Data:
      return decoder_->complete() && add(std::move(data_));
    case Element::Integer:
      return addParsed(parseListInteger(text_));
    case Element::Real:
      return addParsed(parseListReal(text_));
    case Element::Date:
      return addParsed(parseListDate(text_));
    default:
      return add(std::move(text_));
  }
}

bool XmlListBuilder::endContainer() {
  Open container = std::move(open_.back());
  open_.pop_back();
  if (container.element == Element::Plist) return root_.has_value();
  if (container.element == Element::Array) return add(std::move(container.items));
  if (container.awaitsValue) return false;
  return add(PropertyList::Dictionary(std::move(container.entries), PropertyList::Dictionary::Keep::Last));
}

template <typename T>
bool XmlListBuilder::add(T&& value) {
  place().set(std::forward<T>(value));
  return true;
}

template <typename T>
bool XmlListBuilder::addParsed(std::optional<T> value) {
  return value && add(*value);
}

// Returns the location of the value that has just ended.
PropertyList& XmlListBuilder::place() {
  if (open_.empty() || open_.back().element == Element::Plist) return root_.emplace();
  Open& parent = open_.back();
  if (parent.element == Element::Array) return parent.items.emplace_back();
  parent.awaitsValue = false;
  return parent.entries.back().value;
}

// Parses the text with Expat (https://libexpat.github.io/doc/).
class XmlListParser {
 public:
  // Overrides the declared encoding, because the text is already converted to UTF-8.
  XmlListParser() : parser_(XML_ParserCreate("UTF-8")) {}

  std::optional<PropertyList> read(std::string_view text);

 private:
  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  bool feed(std::string_view piece, bool isLast);
  bool parse(std::string_view slice, bool isLast);
  // Exceptions must not propagate through the parser's C code, which may call handlers even after it was
  // stopped.
  template <typename Event>
  void handle(Event event);

  static void XMLCALL onStart(void* self, const XML_Char* name, const XML_Char** attributes);
  static void XMLCALL onEnd(void* self, const XML_Char* name);
  static void XMLCALL onText(void* self, const XML_Char* text, int size);
  static void XMLCALL onOther(void* self, const XML_Char* text, int size);

  std::unique_ptr<XML_ParserStruct, Free> parser_;
  XmlListBuilder builder_;
  bool refused_ = false;
  bool sawEvent_ = false;
};

std::optional<PropertyList> XmlListParser::read(std::string_view text) {
  XmlMarkup markup(text);
  if (parser_ == nullptr || !markup.skipProlog()) return std::nullopt;
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), &onStart, &onEnd);
  XML_SetCharacterDataHandler(parser_.get(), &onText);
  XML_SetDefaultHandler(parser_.get(), &onOther);
  for (;;) {
    const auto piece = markup.next();
    if (!piece || !feed(*piece, markup.atEnd())) return std::nullopt;
    if (markup.atEnd()) return builder_.take();
  }
}

// A whole slice without an event lies within one tag or reference. The size bounds what Expat stores of a tag
// before it reports it; in smaller slices Expat spends more on counting lines, which it omits for the last
// one.
bool XmlListParser::feed(std::string_view piece, bool isLast) {
  constexpr std::size_t sliceSize = 16384;
  do {
    const std::string_view slice = piece.substr(0, sliceSize);
    piece.remove_prefix(slice.size());
    sawEvent_ = false;
    if (!parse(slice, isLast && piece.empty()) || (slice.size() == sliceSize && !sawEvent_)) return false;
  } while (!piece.empty());
  return true;
}

bool XmlListParser::parse(std::string_view slice, bool isLast) {
  const auto size = static_cast<int>(slice.size());
  return XML_Parse(parser_.get(), slice.data(), size, isLast ? XML_TRUE : XML_FALSE) == XML_STATUS_OK;
}

template <typename Event>
void XmlListParser::handle(Event event) {
  if (refused_) return;
  sawEvent_ = true;
  try {
    refused_ = !event(builder_);
  } catch (const std::bad_alloc&) {
    refused_ = true;
  }
  if (refused_) XML_StopParser(parser_.get(), XML_FALSE);
}

void XmlListParser::onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
  auto* const parser = static_cast<XmlListParser*>(self);
  parser->handle([&](XmlListBuilder& builder) {
    if (*attributes != nullptr && XML_GetCurrentByteCount(parser->parser_.get()) > maxTagSize) return false;
    return builder.start(name);
  });
}

void XmlListParser::onEnd(void* self, const XML_Char* /*name*/) {
  static_cast<XmlListParser*>(self)->handle([](XmlListBuilder& builder) { return builder.end(); });
}

void XmlListParser::onText(void* self, const XML_Char* text, int size) {
  const std::string_view piece(text, static_cast<std::size_t>(size));
  static_cast<XmlListParser*>(self)->handle([piece](XmlListBuilder& builder) { return builder.text(piece); });
}

// For example white space after the root element.
void XmlListParser::onOther(void* self, const XML_Char* /*text*/, int /*size*/) {
  static_cast<XmlListParser*>(self)->sawEvent_ = true;
}

}  // namespace

std::optional<PropertyList> readXmlList(std::string_view text) {
  return XmlListParser().read(text);
}

}  // namespace platform
