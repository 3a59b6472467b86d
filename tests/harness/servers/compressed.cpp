#include "tests/harness/servers/compressed.h"

#include <zlib.h>

#include <stdexcept>

namespace test_support {
namespace {

int windowBits(CompressedFormat format) {
  if (format == CompressedFormat::Gzip) return MAX_WBITS + 16;
  return format == CompressedFormat::Zlib ? MAX_WBITS : -MAX_WBITS;
}

}  // namespace

std::string compressed(std::string_view bytes, CompressedFormat format) {
  z_stream stream{};
  if (::deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, windowBits(format), 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("deflateInit2 failed");
  std::string result(::deflateBound(&stream, bytes.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef*>(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  const int status = ::deflate(&stream, Z_FINISH);
  result.resize(stream.total_out);
  ::deflateEnd(&stream);
  if (status != Z_STREAM_END) throw std::runtime_error("deflate failed");
  return result;
}

}  // namespace test_support
