// Input: a line with content codings, then the body of a reply. A decoded body must not exceed the limit, a
// body without a known coding must be unchanged, and an encoded body must be restored.

#include "platform/portable/http/content_coding.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "tests/harness/servers/compressed.h"

namespace {

using fuzz::require;
using platform::withoutContentCodings;
using test_support::compressed;
using test_support::CompressedFormat;

constexpr std::size_t limit = std::size_t{1} << 16;

bool mayName(std::string_view codings, std::string_view part) {
  std::string lower(codings);
  for (char& c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return lower.find(part) != std::string::npos;
}

void checkDecoding(const std::string& body, std::string_view codings) {
  const auto decoded = withoutContentCodings(body, codings, limit);
  require(!decoded || decoded->size() <= limit || decoded == body, "the decoded body is within the limit");
  if (!mayName(codings, "gzip") && !mayName(codings, "deflate"))
    require(decoded == body, "without a known coding the body is unchanged");
}

void checkRoundTrip(const std::string& body) {
  if (body.size() > limit) return;
  require(withoutContentCodings(compressed(body, CompressedFormat::Gzip), "gzip", limit) == body, "gzip");
  require(withoutContentCodings(compressed(body, CompressedFormat::Zlib), "deflate", limit) == body, "zlib");
  require(withoutContentCodings(compressed(body, CompressedFormat::RawDeflate), "deflate", limit) == body,
          "raw deflate");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string_view codings = input.substr(0, input.find('\n'));
  const std::string body(input.substr(std::min(input.size(), codings.size() + 1)));
  checkDecoding(body, codings);
  checkRoundTrip(body);
  return 0;
}
