#pragma once

namespace platform {

// Where the lines of a text stand in their frame. A value, any thread, as is the other.
enum class TextAlignment { Left = 0, Center = 2 };

// The desktop's own font; `size` in points.
struct Font {
  Font(double ofSize, bool isBold = false) : size(ofSize), bold(isBold) {}
  double size;
  bool bold;
};

}  // namespace platform
