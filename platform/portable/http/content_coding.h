#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Decodes the body of an HTTP reply whose Content-Encoding is `codings`, for instance "gzip" or "deflate,
// gzip" (RFC 9110, section 8.4). Supports gzip, x-gzip and deflate, ignoring case. Skips a coding that is
// unknown or that the body is not in, because servers name codings that they did not apply. Returns a body
// with more than five known codings unchanged. Returns nullopt if decoding yields more than `limit` bytes.
// Throws std::bad_alloc. Thread-safe.
[[nodiscard]] std::optional<std::string> withoutContentCodings(std::string body, std::string_view codings,
                                                               std::size_t limit);

}  // namespace platform
