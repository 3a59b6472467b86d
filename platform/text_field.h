#pragma once

#include <string>
#include <string_view>

#include "platform/view.h"

namespace platform {

enum class TextAlignment { Left = 0, Center = 2 };

// A view with a text that nobody types into: no frame, no background, not selectable. Line breaks in the text
// are kept; lines stand from the top down. Main thread only.
class TextField : public View {
 public:
  explicit TextField(Rect frame);

  void setAlignment(TextAlignment alignment);
  void setText(std::string_view text);
  // The desktop's own font; `size` in points.
  void setSystemFont(double size);
};

}  // namespace platform
