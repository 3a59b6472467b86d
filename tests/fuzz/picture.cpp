// Input: a picture of the server. The CRCs of a PNG are corrected first, so that the decoder reads past them.

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/image.h"
#include "platform/linux/images/image_impl.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

namespace {

using fuzz::require;

constexpr std::string_view kPngSignature = "\x89PNG\r\n\x1a\n";
constexpr long long kMaxBytes = 64 << 20;

std::uint32_t bigEndianAt(const std::string& bytes, std::size_t offset) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8U | static_cast<std::uint8_t>(bytes[offset + i]);
  return number;
}

// A PNG chunk consists of length, type, data and a CRC over type and data.
void setCheckSums(std::string& bytes) {
  if (!bytes.starts_with(kPngSignature)) return;
  for (std::size_t chunk = kPngSignature.size(); chunk + 12 <= bytes.size();) {
    const std::size_t length = bigEndianAt(bytes, chunk);
    if (length > bytes.size() - chunk - 12) return;
    const auto* const summed = reinterpret_cast<const Bytef*>(bytes.data() + chunk + 4);
    const auto sum = static_cast<std::uint32_t>(::crc32(0, summed, static_cast<uInt>(length + 4)));
    for (std::size_t i = 0; i < 4; ++i)
      bytes[chunk + 8 + length + i] = static_cast<char>(sum >> (24 - 8 * i) & 0xFFU);
    chunk += 12 + length;
  }
}

void checkRepresentation(const platform::Image& image, const QImage& representation) {
  require(!representation.isNull() && representation.width() >= 1 && representation.height() >= 1,
          "a picture has pixels");
  require(representation.sizeInBytes() <= kMaxBytes, "the pixels are within the limit");
  require(image.size().width == representation.width() && image.size().height == representation.height(),
          "a point is a pixel, whatever the picture says");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Qt's warnings about damaged pictures would fill the disk.
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  std::string bytes(data, data + size);
  setCheckSums(bytes);
  const auto image = platform::imageWithData(bytes);
  if (image == nullptr) return 0;
  require(image->isValid() && image->impl().representations.size() == 1, "a picture has one representation");
  checkRepresentation(*image, image->impl().representations.front());
  return 0;
}
