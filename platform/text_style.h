#pragma once

namespace platform {

// The alignment of text lines in their frame. This and Font are value types, usable on any thread.
enum class TextAlignment { Left = 0, Center = 2 };

// The desktop's default font; `size` in points.
struct Font {
  Font(double ofSize, bool isBold = false) : size(ofSize), bold(isBold) {}
  double size;
  bool bold;
};

}  // namespace platform
