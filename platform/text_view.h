#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/color.h"
#include "platform/text_style.h"
#include "platform/view.h"

namespace platform {

// The appearance and behaviour of a whole text.
struct TextAttributes {
  bool pointingHandCursor = false;
  std::optional<Color> foregroundColor;
  // The URL to open through Workspace when the text is clicked, or when Return or Space is pressed while it
  // has the input focus. Empty if the text is not a link.
  std::string link;
  bool underline = false;
};

// A view with text to read. The text starts at the top and wraps at the frame's width. Text higher than the
// frame extends the view downwards. Main thread only.
class TextView : public View {
 public:
  explicit TextView(Rect frame);

  void setString(std::string_view text);
  // Shows the text in the text system's default font, whatever font was set before.
  void setAttributedString(std::string_view text, const TextAttributes& attributes);
  // Sets the font of the text shown and of later calls of setString.
  void setFont(Font font);
  void setAlignment(TextAlignment alignment);
  // Whether the text has a background of its own. On by default.
  void setDrawsBackground(bool draws);
  // No effect on Linux, where a text view is never editable; kept for systems where it is editable by
  // default.
  void setEditable(bool editable);
  // Whether the user can select and copy the text. On by default. A link can be clicked but not selected.
  void setSelectable(bool selectable);
  // Shows an attributed string on one line, which is cut with an ellipsis if it is too long.
  void setTruncatesTail(bool truncates);
};

}  // namespace platform
