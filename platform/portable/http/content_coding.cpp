#include "platform/portable/http/content_coding.h"

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

// Each coding may expand the body to the limit again. Servers apply one; proxies rarely add a second.
constexpr std::size_t maxCodings = 5;

enum class Coding { Gzip, Deflate };

// zlib's window-bits values for the stream formats: gzip (RFC 1952), zlib (RFC 1950), raw deflate.
enum class Format { Gzip = MAX_WBITS + 16, Zlib = MAX_WBITS, Raw = -MAX_WBITS };

enum class Outcome { Decoded, NotInFormat, TooLong };

// Decodes consecutive streams of one format from the beginning of the input.
class Inflater {
 public:
  Inflater(std::string_view input, Format format) : rest_(input) {
    if (::inflateInit2(&stream_, static_cast<int>(format)) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { ::inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  // The input that has not been consumed.
  [[nodiscard]] std::string_view rest() const { return rest_; }

  // Appends the content of the next stream. A stream that is not complete counts as NotInFormat.
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

// Returns whether `bytes` begin with a gzip member header: the magic number, the method deflate, and reserved
// flags that are zero (RFC 1952, section 2.3.1).
bool beginsGzipMember(std::string_view bytes) {
  constexpr unsigned char reservedFlags = 0xe0;
  return bytes.size() > 3 && bytes.starts_with("\x1f\x8b\x08") &&
         (static_cast<unsigned char>(bytes[3]) & reservedFlags) == 0;
}

// A gzip file is a sequence of members. Bytes after the last member are ignored, as in gzip(1) and browsers.
Outcome appendGzip(std::string_view body, BoundedText& output) {
  Inflater inflater(body, Format::Gzip);
  auto outcome = inflater.appendStream(output);
  while (outcome == Outcome::Decoded && beginsGzipMember(inflater.rest()))
    outcome = inflater.appendStream(output);
  return outcome;
}

Outcome appendZlib(std::string_view body, BoundedText& output) {
  return Inflater(body, Format::Zlib).appendStream(output);
}

// Raw deflate has no header or checksum, so a stream counts only if it ends with the body.
Outcome appendRawDeflate(std::string_view body, BoundedText& output) {
  Inflater inflater(body, Format::Raw);
  const auto outcome = inflater.appendStream(output);
  return outcome == Outcome::Decoded && !inflater.rest().empty() ? Outcome::NotInFormat : outcome;
}

// "deflate" means the zlib format; some servers send raw deflate instead.
std::vector<decltype(&appendGzip)> decodersOf(Coding coding) {
  if (coding == Coding::Gzip) return {&appendGzip};
  return {&appendZlib, &appendRawDeflate};
}

// Returns the decoded body, or the body unchanged if it is not in this coding; nullopt beyond `limit`.
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
  if (equalIgnoringCase(name, "gzip") || equalIgnoringCase(name, "x-gzip")) return Coding::Gzip;
  if (equalIgnoringCase(name, "deflate")) return Coding::Deflate;
  return std::nullopt;
}

// Returns the known codings in the order in which they were applied.
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
