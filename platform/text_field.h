#pragma once

#include <string_view>

#include "platform/text_style.h"
#include "platform/view.h"

namespace platform {

// A view with a text that nobody types into: no frame, no background, not selectable. Line breaks in the text
// are kept; lines stand from the top down. Main thread only.
class TextField : public View {
 public:
  explicit TextField(Rect frame);

  void setAlignment(TextAlignment alignment);
  void setText(std::string_view text);
  // 12 points at first.
  void setFont(Font font);
};

}  // namespace platform
