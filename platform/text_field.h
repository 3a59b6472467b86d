#pragma once

#include <string_view>

#include "platform/text_style.h"
#include "platform/view.h"

namespace platform {

// A view with read-only text: no frame, no background, not selectable. Keeps line breaks; the text starts at
// the top. Main thread only.
class TextField : public View {
 public:
  explicit TextField(Rect frame);

  void setAlignment(TextAlignment alignment);
  void setText(std::string_view text);
  // The default size is 12 points.
  void setFont(Font font);
};

}  // namespace platform
