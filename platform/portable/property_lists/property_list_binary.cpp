#include <bit>
#include <cstdint>

#include "platform/portable/property_lists/property_list_readers.h"
#include "platform/portable/property_lists/property_list_unicode.h"

namespace platform {
namespace {

using Bytes = std::span<const std::byte>;

constexpr std::size_t headerSize = 8, trailerSize = 32;
constexpr std::size_t maxNumberLength = 8;

// The kinds of objects: the upper four bits of an object's first byte.
enum Kind : unsigned {
  single = 0x0,
  integer = 0x1,
  real = 0x2,
  date = 0x3,
  data = 0x4,
  asciiText = 0x5,
  utf16Text = 0x6,
  uid = 0x8,
  array = 0xA,
  set = 0xC,
  dictionary = 0xD,
};

// Returns the part of `bytes` at `position`; nullopt if it exceeds `bytes`.
std::optional<Bytes> part(Bytes bytes, std::uint64_t position, std::uint64_t size) {
  if (position > bytes.size() || size > bytes.size() - position) return std::nullopt;
  return bytes.subspan(position, size);
}

// Decodes a big-endian number of at most maxNumberLength bytes.
std::uint64_t number(Bytes bytes) {
  std::uint64_t result = 0;
  for (const std::byte byte : bytes) result = result << 8 | std::to_integer<std::uint64_t>(byte);
  return result;
}

// The layout of the list, from its trailer.
struct Layout {
  Bytes objects;  // the header and all objects; offsets count from its start
  Bytes offsets;  // the offset of each object
  std::size_t offsetSize = 0;
  std::size_t referenceSize = 0;
  std::uint64_t objectCount = 0;
  std::uint64_t topObject = 0;
};

std::optional<Layout> layoutOf(Bytes list) {
  if (list.size() < headerSize + trailerSize) return std::nullopt;
  const Bytes trailer = list.last(trailerSize);
  const Bytes body = list.first(list.size() - trailerSize);
  Layout layout;
  layout.offsetSize = number(trailer.subspan(6, 1));
  layout.referenceSize = number(trailer.subspan(7, 1));
  layout.objectCount = number(trailer.subspan(8, 8));
  layout.topObject = number(trailer.subspan(16, 8));
  const std::uint64_t table = number(trailer.subspan(24, 8));
  if (layout.offsetSize < 1 || layout.offsetSize > maxNumberLength) return std::nullopt;
  if (layout.referenceSize < 1 || layout.referenceSize > maxNumberLength) return std::nullopt;
  if (table <= headerSize || table > body.size()) return std::nullopt;
  if (layout.objectCount > (body.size() - table) / layout.offsetSize) return std::nullopt;
  layout.objects = body.first(table);
  layout.offsets = body.subspan(table, layout.objectCount * layout.offsetSize);
  return layout;
}

// An object's marker: its kind, its number of elements (or the lower four bits, for kinds without a count)
// and the offset of the first one.
struct Head {
  unsigned kind = 0;
  std::uint64_t count = 0;
  std::uint64_t position = 0;
};

class BinaryListReader {
 public:
  explicit BinaryListReader(const Layout& layout) : layout_(layout) {}

  std::optional<PropertyList> object(std::uint64_t index);

 private:
  std::optional<Head> headOf(std::uint64_t index) const;
  bool readCount(Head& head) const;
  std::optional<std::uint64_t> referenceAt(std::uint64_t position) const;

  std::optional<PropertyList> integerOf(const Head& head) const;
  std::optional<PropertyList> realOf(const Head& head) const;
  std::optional<PropertyList> dateOf(const Head& head) const;
  std::optional<PropertyList> dataOf(const Head& head);
  std::optional<PropertyList> stringOf(const Head& head);
  std::optional<std::string> textOf(const Head& head);
  std::optional<PropertyList> uidOf(const Head& head);
  std::optional<PropertyList> arrayOf(const Head& head);
  std::optional<PropertyList> dictionaryOf(const Head& head);
  std::optional<std::string> keyAt(std::uint64_t index);

  Layout layout_;
  ListBounds bounds_;
};

std::optional<PropertyList> singleOf(const Head& head) {
  switch (head.count) {
    case 0x0:
      return PropertyList(PropertyList::Null());
    case 0x8:
      return PropertyList(false);
    case 0x9:
      return PropertyList(true);
    default:
      return std::nullopt;
  }
}

std::optional<PropertyList> BinaryListReader::object(std::uint64_t index) {
  const auto head = headOf(index);
  if (!head || !bounds_.takeObjects()) return std::nullopt;
  switch (head->kind) {
    case single:
      return singleOf(*head);
    case integer:
      return integerOf(*head);
    case real:
      return realOf(*head);
    case date:
      return dateOf(*head);
    case data:
      return dataOf(*head);
    case asciiText:
    case utf16Text:
      return stringOf(*head);
    case uid:
      return uidOf(*head);
    case array:
    case set:
      return arrayOf(*head);
    case dictionary:
      return dictionaryOf(*head);
    default:
      return std::nullopt;
  }
}

std::optional<Head> BinaryListReader::headOf(std::uint64_t index) const {
  if (index >= layout_.objectCount) return std::nullopt;
  const std::uint64_t position =
      number(layout_.offsets.subspan(index * layout_.offsetSize, layout_.offsetSize));
  const auto first = part(layout_.objects, position, 1);
  if (!first || position < headerSize) return std::nullopt;
  const auto byte = std::to_integer<unsigned>(first->front());
  Head head{byte >> 4, byte & 0xF, position + 1};
  if (head.kind >= data && head.kind != uid && !readCount(head)) return std::nullopt;
  return head;
}

// If the lower four bits are all set, the count follows as an integer object.
bool BinaryListReader::readCount(Head& head) const {
  constexpr std::uint64_t countFollows = 0xF;
  if (head.count != countFollows) return true;
  const auto first = part(layout_.objects, head.position, 1);
  if (!first || std::to_integer<unsigned>(first->front()) >> 4 != integer) return false;
  const std::size_t size = std::size_t{1} << (std::to_integer<unsigned>(first->front()) & 0xF);
  if (size > maxNumberLength) return false;
  const auto bytes = part(layout_.objects, head.position + 1, size);
  if (!bytes) return false;
  head.count = number(*bytes);
  head.position += 1 + size;
  return true;
}

std::optional<std::uint64_t> BinaryListReader::referenceAt(std::uint64_t position) const {
  const auto bytes = part(layout_.objects, position, layout_.referenceSize);
  if (!bytes) return std::nullopt;
  return number(*bytes);
}

// Integers of eight bytes are signed, shorter ones are unsigned. Of sixteen bytes, the upper eight may only
// be the sign extension.
std::optional<PropertyList> BinaryListReader::integerOf(const Head& head) const {
  constexpr std::uint64_t maxExponentLength = 4;
  if (head.count > maxExponentLength) return std::nullopt;
  auto bytes = part(layout_.objects, head.position, std::uint64_t{1} << head.count);
  if (!bytes) return std::nullopt;
  if (bytes->size() <= maxNumberLength) return PropertyList(std::bit_cast<std::int64_t>(number(*bytes)));
  const auto value = std::bit_cast<std::int64_t>(number(bytes->last(maxNumberLength)));
  const auto upper = std::bit_cast<std::int64_t>(number(bytes->first(maxNumberLength)));
  if (upper != (value < 0 ? -1 : 0)) return std::nullopt;
  return PropertyList(value);
}

std::optional<PropertyList> BinaryListReader::realOf(const Head& head) const {
  if (head.count != 2 && head.count != 3) return std::nullopt;
  const auto bytes = part(layout_.objects, head.position, std::uint64_t{1} << head.count);
  if (!bytes) return std::nullopt;
  if (head.count == 3) return PropertyList(std::bit_cast<double>(number(*bytes)));
  return PropertyList(double{std::bit_cast<float>(static_cast<std::uint32_t>(number(*bytes)))});
}

std::optional<PropertyList> BinaryListReader::dateOf(const Head& head) const {
  const auto bytes = part(layout_.objects, head.position, sizeof(double));
  if (head.count != 3 || !bytes) return std::nullopt;
  return PropertyList(PropertyList::Date{std::bit_cast<double>(number(*bytes))});
}

std::optional<PropertyList> BinaryListReader::dataOf(const Head& head) {
  const auto bytes = part(layout_.objects, head.position, head.count);
  if (!bytes || !bounds_.takeBytes(bytes->size())) return std::nullopt;
  return PropertyList(PropertyList::Data(bytes->begin(), bytes->end()));
}

std::optional<PropertyList> BinaryListReader::stringOf(const Head& head) {
  auto text = textOf(head);
  if (!text) return std::nullopt;
  return PropertyList(std::move(*text));
}

std::optional<std::string> BinaryListReader::textOf(const Head& head) {
  const std::size_t width = head.kind == utf16Text ? 2 : 1;
  if (head.count > layout_.objects.size() / width) return std::nullopt;
  const auto bytes = part(layout_.objects, head.position, head.count * width);
  if (!bytes || !bounds_.takeBytes(head.count)) return std::nullopt;
  std::string text;
  text.reserve(head.count);
  Utf16Appender units(text);
  for (std::size_t i = 0; i < bytes->size(); i += width) {
    const std::uint64_t unit = number(bytes->subspan(i, width));
    if ((width == 1 && unit >= 0x80) || !units.add(static_cast<char16_t>(unit))) return std::nullopt;
  }
  if (!units.complete() || !bounds_.takeBytes(text.size() - head.count)) return std::nullopt;
  return text;
}

std::optional<PropertyList> BinaryListReader::uidOf(const Head& head) {
  constexpr std::string_view key = "CF$UID";
  const std::uint64_t size = head.count + 1;
  const auto bytes = part(layout_.objects, head.position, size);
  if (!bytes || size > maxNumberLength || number(*bytes) > UINT32_MAX) return std::nullopt;
  if (!bounds_.takeObjects(2) || !bounds_.takeBytes(key.size())) return std::nullopt;
  const auto value = static_cast<std::int64_t>(number(*bytes));
  return PropertyList(PropertyList::Dictionary{{std::string(key), PropertyList(value)}});
}

// The bound on levels also ends a list that contains itself.
std::optional<PropertyList> BinaryListReader::arrayOf(const Head& head) {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep() || head.count > bounds_.objectsLeft()) return std::nullopt;
  PropertyList::Array items;
  for (std::uint64_t i = 0; i < head.count; ++i) {
    const auto index = referenceAt(head.position + i * layout_.referenceSize);
    if (!index) return std::nullopt;
    auto item = object(*index);
    if (!item) return std::nullopt;
    items.push_back(std::move(*item));
  }
  return PropertyList(std::move(items));
}

// The references to all keys precede those to all values.
std::optional<PropertyList> BinaryListReader::dictionaryOf(const Head& head) {
  const ListBounds::Level level(bounds_);
  if (level.tooDeep() || head.count > bounds_.objectsLeft()) return std::nullopt;
  std::vector<PropertyList::Entry> entries;
  for (std::uint64_t i = 0; i < head.count; ++i) {
    const auto keyIndex = referenceAt(head.position + i * layout_.referenceSize);
    const auto valueIndex = referenceAt(head.position + (head.count + i) * layout_.referenceSize);
    if (!keyIndex || !valueIndex) return std::nullopt;
    auto key = keyAt(*keyIndex);
    if (!key) return std::nullopt;
    auto value = object(*valueIndex);
    if (!value) return std::nullopt;
    entries.push_back({std::move(*key), std::move(*value)});
  }
  return PropertyList(PropertyList::Dictionary(std::move(entries), PropertyList::Dictionary::Keep::First));
}

std::optional<std::string> BinaryListReader::keyAt(std::uint64_t index) {
  const auto head = headOf(index);
  if (!head || !bounds_.takeObjects()) return std::nullopt;
  if (head->kind != asciiText && head->kind != utf16Text) return std::nullopt;
  return textOf(*head);
}

}  // namespace

std::optional<PropertyList> readBinaryList(Bytes bytes) {
  const auto layout = layoutOf(bytes);
  if (!layout) return std::nullopt;
  return BinaryListReader(*layout).object(layout->topObject);
}

}  // namespace platform
