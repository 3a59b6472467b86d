#pragma once

#include <functional>
#include <string_view>

#include "platform/view.h"

namespace platform {

// A push button. Its bezel stands in the middle of its frame, with some room around it. Main thread only.
class Button : public View {
 public:
  enum class BezelStyle { Rounded = 1 };

  explicit Button(Rect frame);

  // Also what people who can't see the button are told it is.
  void setTitle(std::string_view title);
  // A disabled button is dimmed and does nothing.
  void setEnabled(bool enabled);
  [[nodiscard]] bool isEnabled() const;
  // Rounded is the one of a new button. No effect on Linux, which has this bezel alone; kept for systems with
  // several.
  void setBezelStyle(BezelStyle style);
  // Called at each click, and for Return or the space bar while the button has the keyboard. It may take as
  // long as it likes and may close the window.
  void setAction(std::function<void()> action);
};

}  // namespace platform
