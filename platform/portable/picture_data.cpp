#include "platform/portable/picture_data.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace platform {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view pngSignature = "\x89PNG\r\n\x1a\n";
constexpr std::string_view jpegSignature = "\xff\xd8";
constexpr std::string_view jpegPass = "\xff\xda";

// A progressive JPEG usually has about ten scans.
constexpr int maxJpegPasses = 64;

// A PNG chunk consists of the length of its data, a name, the data and a checksum.
constexpr std::size_t lengthSize = 4, nameSize = 4, checkSumSize = 4;

constexpr std::array pixelChunks = {"IHDR"sv, "PLTE"sv, "tRNS"sv, "IDAT"sv, "IEND"sv};

std::size_t contentsLength(std::string_view chunk) {
  std::size_t length = 0;
  for (const char byte : chunk.substr(0, lengthSize)) length = length << 8U | static_cast<std::uint8_t>(byte);
  return length;
}

// Bytes after the IEND chunk are dropped.
std::optional<std::string> pixelsOfPng(std::string_view rest) {
  std::string pixels(pngSignature);
  rest.remove_prefix(pngSignature.size());
  for (std::string_view name; name != "IEND";) {
    if (rest.size() < lengthSize + nameSize + checkSumSize) return std::nullopt;
    const std::size_t length = contentsLength(rest);
    if (length > rest.size() - lengthSize - nameSize - checkSumSize) return std::nullopt;
    const std::string_view chunk = rest.substr(0, lengthSize + nameSize + length + checkSumSize);
    name = chunk.substr(lengthSize, nameSize);
    if (std::ranges::find(pixelChunks, name) != pixelChunks.end()) pixels += chunk;
    rest.remove_prefix(chunk.size());
  }
  return pixels;
}

bool hasTooManyPasses(std::string_view bytes) {
  int passes = 0;
  for (std::size_t position = bytes.find(jpegPass); position != std::string_view::npos;
       position = bytes.find(jpegPass, position + jpegPass.size())) {
    if (++passes > maxJpegPasses) return true;
  }
  return false;
}

}  // namespace

std::optional<std::string> boundedPictureData(std::string_view bytes) {
  if (bytes.starts_with(pngSignature)) return pixelsOfPng(bytes);
  if (bytes.starts_with(jpegSignature) && hasTooManyPasses(bytes)) return std::nullopt;
  return std::string(bytes);
}

}  // namespace platform
