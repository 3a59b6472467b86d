#pragma once

#include <functional>
#include <string_view>

#include "platform/view.h"

namespace platform {

// A push button. Its bezel is centred in its frame with a margin around it. Main thread only.
class Button : public View {
 public:
  enum class BezelStyle { Rounded = 1 };

  explicit Button(Rect frame);

  // Sets the title, which is also the accessible name.
  void setTitle(std::string_view title);
  // A disabled button is drawn dimmed and takes no input.
  void setEnabled(bool enabled);
  [[nodiscard]] bool isEnabled() const;
  // A new button has the style Rounded. No effect on Linux, where this is the only style; kept for systems
  // with several.
  void setBezelStyle(BezelStyle style);
  // Sets the function to call when the button is clicked, or when Return or the space bar is pressed while it
  // has the input focus. The function may block and may close the window.
  void setAction(std::function<void()> action);
};

}  // namespace platform
