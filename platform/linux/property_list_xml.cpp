#include <QXmlStreamReader>

#include "platform/linux/property_list_readers.h"
#include "platform/linux/property_list_scalars.h"
#include "platform/linux/property_list_xml_feed.h"

namespace platform {
namespace {

using Token = QXmlStreamReader::TokenType;

// Goes through the elements of one list, from the outside in.
class XmlListReader {
 public:
  explicit XmlListReader(std::string_view text) : feed_(text) { parser_.setNamespaceProcessing(false); }

  std::optional<PropertyList> read();

 private:
  Token next();
  Token nextTag();
  bool atElement(const char16_t* name) const { return parser_.qualifiedName() == QStringView(name); }

  std::optional<PropertyList> root();
  std::optional<PropertyList> value();
  std::optional<PropertyList> array();
  std::optional<PropertyList> dictionary();
  std::optional<PropertyList> boolean(bool value);
  std::optional<PropertyList> data();
  std::optional<std::string> text();

  template <typename T>
  std::optional<PropertyList> scalar(std::optional<T> (*parse)(std::string_view));

  XmlFeed feed_;
  QXmlStreamReader parser_;
  ListBounds bounds_;
};

std::optional<PropertyList> XmlListReader::read() {
  if (nextTag() != Token::StartElement) return std::nullopt;
  auto list = root();
  if (!list || !feed_.onlyMiscellaneousLeft()) return std::nullopt;
  return list;
}

Token XmlListReader::next() {
  for (;;) {
    const Token token = parser_.readNext();
    if (token != Token::Invalid) return token;
    if (parser_.error() != QXmlStreamReader::PrematureEndOfDocumentError) return token;
    const auto slice = feed_.next();
    if (!slice) return token;
    parser_.addData(QByteArray::fromStdString(*slice));
  }
}

// The next start or end of an element; invalid when anything but white space is on the way to it.
Token XmlListReader::nextTag() {
  for (;;) {
    const Token token = next();
    if (token == Token::StartElement || token == Token::EndElement) return token;
    const bool blank = token == Token::Characters && parser_.isWhitespace();
    if (!blank && token != Token::StartDocument && token != Token::Comment) return Token::Invalid;
  }
}

// A value stands in <plist>; by itself it is a list as well.
std::optional<PropertyList> XmlListReader::root() {
  if (!atElement(u"plist")) return value();
  if (nextTag() != Token::StartElement) return std::nullopt;
  auto list = value();
  if (!list || nextTag() != Token::EndElement) return std::nullopt;
  return list;
}

// From the start of its element to the end of it, as all of the following.
std::optional<PropertyList> XmlListReader::value() {
  if (!bounds_.takeObjects()) return std::nullopt;
  if (atElement(u"dict")) return dictionary();
  if (atElement(u"array")) return array();
  if (atElement(u"true")) return boolean(true);
  if (atElement(u"false")) return boolean(false);
  if (atElement(u"data")) return data();
  if (atElement(u"integer")) return scalar(parseListInteger);
  if (atElement(u"real")) return scalar(parseListReal);
  if (atElement(u"date")) return scalar(parseListDate);
  if (!atElement(u"string")) return std::nullopt;
  auto string = text();
  if (!string) return std::nullopt;
  return PropertyList(std::move(*string));
}

std::optional<PropertyList> XmlListReader::array() {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep()) return std::nullopt;
  PropertyList::Array items;
  Token token = nextTag();
  for (; token == Token::StartElement; token = nextTag()) {
    auto item = value();
    if (!item) return std::nullopt;
    items.push_back(std::move(*item));
  }
  if (token != Token::EndElement) return std::nullopt;
  return PropertyList(std::move(items));
}

std::optional<PropertyList> XmlListReader::dictionary() {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep()) return std::nullopt;
  PropertyList::Dictionary entries;
  Token token = nextTag();
  for (; token == Token::StartElement; token = nextTag()) {
    if (!atElement(u"key") || !bounds_.takeObjects()) return std::nullopt;
    auto key = text();
    if (!key || nextTag() != Token::StartElement) return std::nullopt;
    auto item = value();
    if (!item) return std::nullopt;
    entries.insert_or_assign(std::move(*key), std::move(*item));
  }
  if (token != Token::EndElement) return std::nullopt;
  return PropertyList(std::move(entries));
}

std::optional<PropertyList> XmlListReader::boolean(bool value) {
  if (nextTag() != Token::EndElement) return std::nullopt;
  return PropertyList(value);
}

std::optional<PropertyList> XmlListReader::data() {
  PropertyList::Data bytes;
  Base64Decoder decoder(bytes);
  for (Token token = next(); token != Token::EndElement; token = next()) {
    if (token == Token::Comment) continue;
    const std::size_t before = bytes.size();
    if (token != Token::Characters || !decoder.add(parser_.text().toUtf8().toStdString()))
      return std::nullopt;
    if (!bounds_.takeBytes(bytes.size() - before)) return std::nullopt;
  }
  if (!decoder.complete()) return std::nullopt;
  return PropertyList(std::move(bytes));
}

std::optional<std::string> XmlListReader::text() {
  std::string text;
  for (Token token = next(); token != Token::EndElement; token = next()) {
    if (token == Token::Comment) continue;
    if (token != Token::Characters) return std::nullopt;
    const QByteArray piece = parser_.text().toUtf8();
    if (!bounds_.takeBytes(static_cast<std::size_t>(piece.size()))) return std::nullopt;
    text.append(piece.constData(), static_cast<std::size_t>(piece.size()));
  }
  return text;
}

template <typename T>
std::optional<PropertyList> XmlListReader::scalar(std::optional<T> (*parse)(std::string_view)) {
  const auto content = text();
  if (!content) return std::nullopt;
  const std::optional<T> value = parse(*content);
  if (!value) return std::nullopt;
  return PropertyList(*value);
}

}  // namespace

std::optional<PropertyList> readXmlList(std::string_view text) {
  return XmlListReader(text).read();
}

}  // namespace platform
