#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utf8.h>

#include "platform/portable/property_lists/property_list_readers.h"
#include "platform/portable/property_lists/property_list_unicode.h"
#include "platform/text_case.h"

namespace platform {
namespace {

constexpr std::string_view formatBlanks = " \t\r\n";
constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

// Returns the value of `encoding` in an XML declaration at the start; empty if there is none.
std::string declaredEncoding(std::string_view text) {
  constexpr std::string_view opening = "<?xml", attribute = "encoding";
  constexpr std::size_t maxDeclarationLength = 1024;
  text.remove_prefix(std::min(text.find_first_not_of(formatBlanks), text.size()));
  if (!text.starts_with(opening)) return {};
  text = text.substr(0, maxDeclarationLength);
  text = text.substr(0, text.find("?>"));
  const std::size_t name = text.find(attribute);
  if (name == std::string_view::npos) return {};
  const std::size_t quote = text.find_first_of("\"'", name);
  if (quote == std::string_view::npos) return {};
  const std::size_t end = text.find(text[quote], quote + 1);
  if (end == std::string_view::npos) return {};
  return std::string(text.substr(quote + 1, end - quote - 1));
}

// Returns the code unit of `width` bytes at `position`.
char32_t unitAt(std::string_view bytes, std::size_t position, std::size_t width, bool bigEndian) {
  char32_t unit = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t byte = bigEndian ? position + i : position + width - 1 - i;
    unit = unit << 8 | static_cast<unsigned char>(bytes[byte]);
  }
  return unit;
}

std::optional<std::string> decodeWide(std::string_view bytes, std::size_t width, bool bigEndian) {
  constexpr char32_t mark = 0xFEFF;
  if (bytes.size() % width != 0) return std::nullopt;
  if (!bytes.empty() && unitAt(bytes, 0, width, bigEndian) == mark) bytes.remove_prefix(width);
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

// Single-byte encodings only: a list from a server must not select an arbitrary decoder of the C library.
bool isKnownEncoding(std::string_view name) {
  constexpr std::array<std::string_view, 9> known = {"US-ASCII",     "latin1",       "ISO-8859-1",
                                                     "ISO-8859-2",   "ISO-8859-15",  "windows-1250",
                                                     "windows-1251", "windows-1252", "KOI8-R"};
  return std::ranges::any_of(known, [name](std::string_view one) { return equalIgnoringCase(one, name); });
}

class Decoder {
 public:
  explicit Decoder(const std::string& encoding) : handle_(::iconv_open("UTF-8", encoding.c_str())) {}
  ~Decoder() {
    if (valid()) ::iconv_close(handle_);
  }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  // iconv_open(3) reports an error by this value. NOLINTNEXTLINE(performance-no-int-to-ptr)
  [[nodiscard]] bool valid() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Decodes what fits into `buffer` from the start of `bytes` and removes it. Returns its length in UTF-8,
  // nullopt if a byte is undefined in the encoding.
  std::optional<std::size_t> decode(std::string_view& bytes, std::span<char> buffer) {
    char* in = const_cast<char*>(bytes.data());
    char* out = buffer.data();
    std::size_t inLeft = bytes.size(), outLeft = buffer.size();
    const std::size_t failures = ::iconv(handle_, &in, &inLeft, &out, &outLeft);
    if (failures == static_cast<std::size_t>(-1) && errno != E2BIG) return std::nullopt;
    bytes.remove_prefix(bytes.size() - inLeft);
    return buffer.size() - outLeft;
  }

 private:
  iconv_t handle_;
};

std::optional<std::string> decodeNamed(std::string_view bytes, const std::string& encoding) {
  Decoder decoder(encoding);
  if (!isKnownEncoding(encoding) || !decoder.valid()) return std::nullopt;
  std::string text;
  std::array<char, 4096> slice;
  while (!bytes.empty()) {
    const auto size = decoder.decode(bytes, slice);
    if (!size || text.size() + *size > propertyListMaxBytes) return std::nullopt;
    text.append(slice.data(), *size);
  }
  return text;
}

// ASCII, the common case, is tested eight bytes at a time.
bool isValidUtf8(std::string_view bytes) {
  constexpr std::uint64_t highBits = 0x8080808080808080;
  for (; bytes.size() >= sizeof highBits; bytes.remove_prefix(sizeof highBits)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    if ((word & highBits) != 0) break;
  }
  return utf8::is_valid(bytes.begin(), bytes.end());
}

std::optional<ListText> checkedUtf8(std::string_view bytes) {
  if (!isValidUtf8(bytes)) return std::nullopt;
  if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
  return ListText(bytes);
}

std::optional<ListText> owned(std::optional<std::string> text) {
  if (!text) return std::nullopt;
  return ListText(std::move(*text));
}

bool namesUtf8(std::string_view encoding) {
  return equalIgnoringCase(encoding, "UTF-8") || equalIgnoringCase(encoding, "utf8");
}

struct WideEncoding {
  std::size_t width;
  bool bigEndian;
};

// Determines the code units from a byte order mark or a leading '<'; returns nullopt for units of one byte.
// The marks of UTF-32 are tested first, because those of UTF-16 are their prefixes.
std::optional<WideEncoding> wideEncodingOf(std::string_view bytes) {
  using namespace std::string_view_literals;
  constexpr std::array<std::pair<std::string_view, WideEncoding>, 8> starts = {{
      {"\0\0\xFE\xFF"sv, {4, true}},
      {"\xFF\xFE\0\0"sv, {4, false}},
      {"\xFE\xFF"sv, {2, true}},
      {"\xFF\xFE"sv, {2, false}},
      {"\0\0\0<"sv, {4, true}},
      {"<\0\0\0"sv, {4, false}},
      {"\0<"sv, {2, true}},
      {"<\0"sv, {2, false}},
  }};
  const auto found =
      std::ranges::find_if(starts, [bytes](auto start) { return bytes.starts_with(start.first); });
  return found == starts.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::optional<ListText> decodeListText(std::span<const std::byte> given) {
  const std::string_view bytes(reinterpret_cast<const char*>(given.data()), given.size());
  if (const auto wide = wideEncodingOf(bytes)) return owned(decodeWide(bytes, wide->width, wide->bigEndian));
  const std::string encoding = declaredEncoding(bytes);
  if (bytes.starts_with(utf8Mark) || encoding.empty() || namesUtf8(encoding)) return checkedUtf8(bytes);
  return owned(decodeNamed(bytes, encoding));
}

}  // namespace platform
