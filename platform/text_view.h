#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/color.h"
#include "platform/text_style.h"
#include "platform/view.h"

namespace platform {

// How all of a text looks and what it does.
struct TextAttributes {
  bool pointingHandCursor = false;
  std::optional<Color> foregroundColor;
  // The address that a click on the text opens through the workspace, or Return or the space bar while it has
  // the keyboard; empty for a text that is no link.
  std::string link;
  bool underline = false;
};

// A view with a text to be read; lines stand from the top down and wrap at the frame's width. Text that needs
// more height than the frame has makes the view longer downwards. Main thread only.
class TextView : public View {
 public:
  explicit TextView(Rect frame);

  void setString(std::string_view text);
  // In the text system's own font, whatever font was set before.
  void setAttributedString(std::string_view text, const TextAttributes& attributes);
  // The font of what is shown and of the strings to come.
  void setFont(Font font);
  void setAlignment(TextAlignment alignment);
  // Whether the text stands on a background of its own, as at first.
  void setDrawsBackground(bool draws);
  // No effect on Linux, where a text view is never editable; kept for systems where it is at first.
  void setEditable(bool editable);
  // Whether people can select and copy the text, as at first. A link is clicked, not selected.
  void setSelectable(bool selectable);
  // Shows an attributed string on one line, which ends in an ellipsis where it is too long.
  void setTruncatesTail(bool truncates);
};

}  // namespace platform
