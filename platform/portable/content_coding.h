#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Decodes the body of an HTTP reply whose Content-Encoding is `codings`, for instance "gzip" or "deflate,
// gzip" (RFC 9110, section 8.4). Knows gzip, x-gzip and deflate, in any case. A coding that it doesn't know,
// or that the body turns out not to be in, is passed over, because servers name codings that they did not
// apply: a body without any other comes back as it was received. So does one with more than five known
// codings. Returns nullopt if decoding gives more than `limit` bytes. Throws std::bad_alloc. Thread-safe.
[[nodiscard]] std::optional<std::string> withoutContentCodings(std::string body, std::string_view codings,
                                                               std::size_t limit);

}  // namespace platform
