#pragma once

#include <cstdint>
#include <optional>

#include <QImage>

class QWidget;

namespace platform {

// How a window's pixels hold their colours: the bits in use, and those of each colour.
struct ColorLayout {
  std::uint8_t depth = 0;
  std::uint32_t red = 0, green = 0, blue = 0;

  bool operator==(const ColorLayout&) const = default;
};

// The toolkit's format of the same pixels; nullopt if it has none, as for 8 bits of a palette. Pure.
[[nodiscard]] std::optional<QImage::Format> pictureFormat(const ColorLayout& layout);

// What a window shows between its being mapped and the toolkit's first painting of it. The program may be
// busy for seconds then, and a window without a background of its own would be black.
//
// The display gets the picture as the window's background and needs the program no more. Where it takes no
// such picture (another kind of display, a palette of colours) nothing happens. Main thread.
class FirstPicture {
 public:
  // Hands the display the widget as it looks now. The widget is a window that has been shown and will be
  // painted soon, whether or not it has been mapped by now.
  void give(QWidget& widget);
  // Takes it back once the widget has been painted: what is uncovered later must not show the old picture.
  void takeBack(const QWidget& widget);

 private:
  bool given_ = false;
};

}  // namespace platform
