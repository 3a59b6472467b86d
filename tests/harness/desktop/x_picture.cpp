#include "tests/harness/desktop/x_picture.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include "tests/harness/desktop/x_connection.h"

namespace test_support {

XPicture::XPicture(ScreenArea area, std::vector<Colour> colours)
    : area_(area), colours_(std::move(colours)) {}

Colour XPicture::at(int x, int y) const {
  if (x < 0 || y < 0 || x >= area_.width || y >= area_.height) throw std::out_of_range("beyond the picture");
  return colours_.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(area_.width) +
                     static_cast<std::size_t>(x));
}

bool XPicture::save(const std::string& path) const {
  std::ofstream file(path, std::ios::binary);
  file << "P6\n" << area_.width << " " << area_.height << "\n255\n";
  for (const Colour& colour : colours_) {
    file.put(static_cast<char>(colour.red))
        .put(static_cast<char>(colour.green))
        .put(static_cast<char>(colour.blue));
  }
  return file.flush().good();
}

std::optional<XPicture> pictureOf(const std::string& display, const ScreenArea& area) {
  const XConnection connection(display);
  if (!connection.valid()) return std::nullopt;
  const auto cookie =
      xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(),
                    static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                    static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), ~0U);
  const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(connection.get(), cookie, nullptr));
  if (!image) return std::nullopt;
  // Four bytes per pixel at this depth: blue, green, red and padding.
  const std::uint8_t* const bytes = xcb_get_image_data(image.get());
  const auto length = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
  std::vector<Colour> colours;
  colours.reserve(length / 4);
  for (std::size_t i = 0; i + 3 < length; i += 4) colours.push_back({bytes[i + 2], bytes[i + 1], bytes[i]});
  return XPicture(area, std::move(colours));
}

std::optional<Colour> colourAt(const std::string& display, int x, int y) {
  const std::optional<XPicture> picture = pictureOf(display, {.x = x, .y = y, .width = 1, .height = 1});
  if (!picture) return std::nullopt;
  return picture->at(0, 0);
}

}  // namespace test_support
