#include "platform/portable/content_coding.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <tuple>
#include <utility>
#include <vector>

#include "platform/portable/bounded_text.h"
#include "platform/text_case.h"

namespace platform {
namespace {

// Each one may expand the body to its limit once more; servers apply one, proxies seldom a second.
constexpr std::size_t maxCodings = 5;

enum class Coding { Gzip, Deflate };

// zlib's numbers for the wrappers of a deflate stream: RFC 1952, RFC 1950, none.
enum class Format { Gzip = MAX_WBITS + 16, Zlib = MAX_WBITS, Raw = -MAX_WBITS };

enum class Outcome { Decoded, NotInFormat, TooLong };

// Reads the streams of one format at the beginning of a text.
class Inflater {
 public:
  Inflater(std::string_view input, Format format) : rest_(input) {
    if (::inflateInit2(&stream_, static_cast<int>(format)) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { ::inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  // What no stream has taken yet.
  [[nodiscard]] std::string_view rest() const { return rest_; }

  // Appends the content of the next stream. A stream without its end is none.
  [[nodiscard]] Outcome appendStream(BoundedText& output) {
    std::ignore = ::inflateReset(&stream_);
    for (int status = Z_OK; status != Z_STREAM_END;) {
      status = inflatePiece();
      if (status == Z_MEM_ERROR) throw std::bad_alloc();
      if (status != Z_OK && status != Z_STREAM_END) return Outcome::NotInFormat;
      if (!output.append({piece_.data(), piece_.size() - stream_.avail_out})) return Outcome::TooLong;
    }
    return Outcome::Decoded;
  }

 private:
  int inflatePiece() {
    const auto offered =
        static_cast<uInt>(std::min<std::size_t>(rest_.size(), std::numeric_limits<uInt>::max()));
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(rest_.data()));  // zlib only reads it
    stream_.avail_in = offered;
    stream_.next_out = reinterpret_cast<Bytef*>(piece_.data());
    stream_.avail_out = static_cast<uInt>(piece_.size());
    const int status = ::inflate(&stream_, Z_NO_FLUSH);
    rest_.remove_prefix(offered - stream_.avail_in);
    return status;
  }

  std::string_view rest_;
  z_stream stream_{};
  std::array<char, std::size_t{32} << 10> piece_{};
};

// By what each member begins with: its identification, the method deflate, and reserved flags that are zero
// (RFC 1952, section 2.3.1).
bool beginsLikeMember(std::string_view bytes) {
  constexpr unsigned char reservedFlags = 0xe0;
  return bytes.size() > 3 && bytes.starts_with("\x1f\x8b\x08") &&
         (static_cast<unsigned char>(bytes[3]) & reservedFlags) == 0;
}

// A gzip file is a sequence of members. What follows the last one is ignored, as gzip(1) and browsers do.
Outcome appendGzip(std::string_view body, BoundedText& output) {
  Inflater inflater(body, Format::Gzip);
  auto outcome = inflater.appendStream(output);
  while (outcome == Outcome::Decoded && beginsLikeMember(inflater.rest()))
    outcome = inflater.appendStream(output);
  return outcome;
}

Outcome appendZlib(std::string_view body, BoundedText& output) {
  return Inflater(body, Format::Zlib).appendStream(output);
}

// Without a header or check sum, only a stream that ends with the body is taken for one.
Outcome appendRawDeflate(std::string_view body, BoundedText& output) {
  Inflater inflater(body, Format::Raw);
  const auto outcome = inflater.appendStream(output);
  return outcome == Outcome::Decoded && !inflater.rest().empty() ? Outcome::NotInFormat : outcome;
}

// "deflate" means zlib's wrapper; some servers leave it out.
std::vector<decltype(&appendGzip)> decodersOf(Coding coding) {
  if (coding == Coding::Gzip) return {&appendGzip};
  return {&appendZlib, &appendRawDeflate};
}

// The body without that coding, or unchanged if it is not in it.
std::optional<std::string> withoutCoding(std::string body, Coding coding, std::size_t limit) {
  for (const auto append : decodersOf(coding)) {
    BoundedText output(limit);
    const auto outcome = append(body, output);
    if (outcome == Outcome::TooLong) return std::nullopt;
    if (outcome == Outcome::Decoded) return output.take();
  }
  return body;
}

std::string_view trimmedCoding(std::string_view text) {
  constexpr std::string_view blanks = " \t";
  const auto begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

std::optional<Coding> codingNamed(std::string_view name) {
  if (equalButForCase(name, "gzip") || equalButForCase(name, "x-gzip")) return Coding::Gzip;
  if (equalButForCase(name, "deflate")) return Coding::Deflate;
  return std::nullopt;
}

// In the order in which they were applied.
std::vector<Coding> knownCodings(std::string_view names) {
  std::vector<Coding> codings;
  while (!names.empty()) {
    const auto name = names.substr(0, names.find(','));
    if (const auto coding = codingNamed(trimmedCoding(name))) codings.push_back(*coding);
    names.remove_prefix(std::min(names.size(), name.size() + 1));
  }
  return codings;
}

}  // namespace

std::optional<std::string> withoutContentCodings(std::string body, std::string_view codings,
                                                 std::size_t limit) {
  auto applied = knownCodings(codings);
  if (applied.size() > maxCodings) return body;
  for (; !applied.empty(); applied.pop_back()) {
    auto decoded = withoutCoding(std::move(body), applied.back(), limit);
    if (!decoded) return std::nullopt;
    body = *std::move(decoded);
  }
  return body;
}

}  // namespace platform
