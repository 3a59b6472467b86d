#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

// An area of a display, in pixels from its upper left.
struct ScreenArea {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;

  bool operator==(const Colour&) const = default;
};

// An image of an area of a display.
class XPicture {
 public:
  XPicture(ScreenArea area, std::vector<Colour> colours);

  // Coordinates start at the image's upper left. Throws std::out_of_range beyond its edges.
  [[nodiscard]] Colour at(int x, int y) const;
  [[nodiscard]] int width() const { return area_.width; }
  [[nodiscard]] int height() const { return area_.height; }
  [[nodiscard]] bool save(const std::string& path) const;  // as PPM

  bool operator==(const XPicture& other) const { return colours_ == other.colours_; }

 private:
  ScreenArea area_;
  std::vector<Colour> colours_;
};

// Returns nullopt if the area is not wholly on the display or the display is gone.
[[nodiscard]] std::optional<XPicture> pictureOf(const std::string& display, const ScreenArea& area);
[[nodiscard]] std::optional<Colour> colourAt(const std::string& display, int x, int y);

}  // namespace test_support
