#include <algorithm>

#include <QStringDecoder>

#include "platform/linux/property_list_readers.h"
#include "platform/linux/property_list_unicode.h"

namespace platform {
namespace {

constexpr std::string_view blanks = " \t\r\n";

// The value of `encoding` in an XML declaration at the start; empty when there is none.
std::string declaredEncoding(std::string_view text) {
  constexpr std::string_view opening = "<?xml", attribute = "encoding";
  constexpr std::size_t longestDeclaration = 1024;
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  if (!text.starts_with(opening)) return {};
  text = text.substr(0, longestDeclaration);
  text = text.substr(0, text.find("?>"));
  const std::size_t name = text.find(attribute);
  if (name == std::string_view::npos) return {};
  const std::size_t quote = text.find_first_of("\"'", name);
  if (quote == std::string_view::npos) return {};
  const std::size_t end = text.find(text[quote], quote + 1);
  if (end == std::string_view::npos) return {};
  return std::string(text.substr(quote + 1, end - quote - 1));
}

// The code unit of `width` bytes at `position`.
char32_t unitAt(std::string_view bytes, std::size_t position, std::size_t width, bool bigEndian) {
  char32_t unit = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t byte = bigEndian ? position + i : position + width - 1 - i;
    unit = unit << 8 | static_cast<unsigned char>(bytes[byte]);
  }
  return unit;
}

std::optional<std::string> decodeWide(std::string_view bytes, std::size_t width, bool bigEndian) {
  constexpr char32_t byteOrderMark = 0xFEFF;
  if (bytes.size() % width != 0) return std::nullopt;
  if (!bytes.empty() && unitAt(bytes, 0, width, bigEndian) == byteOrderMark) bytes.remove_prefix(width);
  std::string text;
  text.reserve(bytes.size() / width);
  Utf16Appender units(text);
  for (std::size_t i = 0; i < bytes.size(); i += width) {
    const char32_t unit = unitAt(bytes, i, width, bigEndian);
    const bool valid = width == 2 ? units.add(static_cast<char16_t>(unit)) : appendUtf8(text, unit);
    if (!valid || text.size() > propertyListMaxBytes) return std::nullopt;
  }
  if (!units.complete()) return std::nullopt;
  return text;
}

// In slices, so that the units in between take no memory to speak of.
std::optional<std::string> decodeNamed(std::string_view bytes, const std::string& encoding) {
  constexpr std::size_t sliceSize = 64u << 10;
  QStringDecoder decoder(encoding.c_str());
  if (!decoder.isValid()) return std::nullopt;
  std::string text;
  text.reserve(bytes.size());
  Utf16Appender units(text);
  for (; !bytes.empty(); bytes.remove_prefix(std::min(sliceSize, bytes.size()))) {
    const std::string_view slice = bytes.substr(0, sliceSize);
    const QString decoded = decoder(QByteArrayView(slice.data(), static_cast<qsizetype>(slice.size())));
    if (decoder.hasError()) return std::nullopt;
    for (const QChar unit : decoded) {
      if (!units.add(unit.unicode())) return std::nullopt;
    }
    if (text.size() > propertyListMaxBytes) return std::nullopt;
  }
  if (!units.complete()) return std::nullopt;
  return text;
}

std::optional<ListText> checkedUtf8(std::string_view bytes) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (!QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8()) return std::nullopt;
  if (bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
  return ListText(bytes);
}

std::optional<ListText> owned(std::optional<std::string> text) {
  if (!text) return std::nullopt;
  return ListText(std::move(*text));
}

bool namesUtf8(const std::string& encoding) {
  return QStringConverter::encodingForName(encoding.c_str()) == QStringConverter::Utf8;
}

}  // namespace

std::optional<ListText> decodeListText(std::span<const std::byte> given) {
  const std::string_view bytes(reinterpret_cast<const char*>(given.data()), given.size());
  const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
  if (const auto encoding = QStringConverter::encodingForData(view, u'<')) {
    switch (*encoding) {
      case QStringConverter::Utf16LE:
        return owned(decodeWide(bytes, 2, false));
      case QStringConverter::Utf16BE:
        return owned(decodeWide(bytes, 2, true));
      case QStringConverter::Utf32LE:
        return owned(decodeWide(bytes, 4, false));
      case QStringConverter::Utf32BE:
        return owned(decodeWide(bytes, 4, true));
      default:
        return checkedUtf8(bytes);
    }
  }
  const std::string encoding = declaredEncoding(bytes);
  if (encoding.empty() || namesUtf8(encoding)) return checkedUtf8(bytes);
  return owned(decodeNamed(bytes, encoding));
}

}  // namespace platform
