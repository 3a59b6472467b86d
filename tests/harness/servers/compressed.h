#pragma once

#include <string>
#include <string_view>

namespace test_support {

enum class CompressedFormat { Gzip, Zlib, RawDeflate };

// Returns `bytes` as one stream of that format.
[[nodiscard]] std::string compressed(std::string_view bytes, CompressedFormat format);

}  // namespace test_support
