#pragma once

#include <cstdint>
#include <optional>

#include <QImage>

class QWidget;

namespace platform {

// Pixel layout of an X visual: its depth in bits and the mask of each colour.
struct ColorLayout {
  std::uint8_t depth = 0;
  std::uint32_t red = 0, green = 0, blue = 0;

  bool operator==(const ColorLayout&) const = default;
};

// Returns the QImage format with this pixel layout, or nullopt if there is none, as for an 8-bit palette.
// Thread-safe.
[[nodiscard]] std::optional<QImage::Format> pictureFormat(const ColorLayout& layout);

// Content of a window between its mapping and its first painting by Qt. Main thread only.
//
// The main thread may be busy for seconds at that time, and a window without a background would be black.
// This class therefore sets an image of the widget as the X window's background, which the server paints by
// itself. It does nothing if the display is not X11, the visual has no matching QImage format, or the image
// exceeds the maximum request length.
class FirstPicture {
 public:
  // Sets the background to the widget's current look. `widget` must be a top-level widget that has been
  // shown, mapped or not, and that Qt paints soon.
  void setBackground(QWidget& widget);
  // Removes the background. Call it once the widget has been painted: areas exposed later must not show the
  // old image.
  void clearBackground(const QWidget& widget);

 private:
  bool isSet_ = false;
};

}  // namespace platform
