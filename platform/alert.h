#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/image.h"

namespace platform {

class Window;

// What a sheet's end tells of the first button; the second is one more, and so on.
inline constexpr int alertFirstButtonReturn = 1000;

// A question to the user. Main thread only.
class Alert {
 public:
  enum class Style { Warning = 0 };

  Alert();
  ~Alert();
  Alert(const Alert&) = delete;
  Alert& operator=(const Alert&) = delete;

  // The first one added is the default, which Return presses; Escape presses the one titled "Cancel", or else
  // the one titled "Close". Without any there is an "OK".
  void addButton(std::string_view title);
  void setMessageText(std::string_view text);
  // Warning is the one of a new alert. No effect on Linux, where alerts look alike; kept for systems whose
  // alerts differ by it.
  void setAlertStyle(Style style);
  // Shown at 64 points at most, whatever its size. nullptr for none.
  void setIcon(std::shared_ptr<Image> icon);

  // Hangs the question as it is now on the window's upper edge, inside its content, and returns at once; the
  // alert itself may go. Until it is answered the window's other contents take no input and its close control
  // does nothing; other windows go on. A question that is hung on a window with one waits its turn.
  //
  // `didEnd` is called by the run loop once the sheet has gone, with the number of the button. It may hang up
  // the next. It is not called when the window is closed or goes away first, or the program ends.
  void beginSheetModalForWindow(const std::shared_ptr<Window>& window, std::function<void(int)> didEnd);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
