#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/image.h"

namespace platform {

class Window;

// The value that `didEnd` receives for the first button. Each further button has the next number.
inline constexpr int alertFirstButtonReturn = 1000;

// A question to the user, shown as a sheet. Main thread only.
class Alert {
 public:
  enum class Style { Warning = 0 };

  Alert();
  ~Alert();
  Alert(const Alert&) = delete;
  Alert& operator=(const Alert&) = delete;

  // Adds a button. Return presses the first button; Escape presses the button titled "Cancel" or, without
  // one, the button titled "Close". An alert without buttons shows "OK".
  void addButton(std::string_view title);
  void setMessageText(std::string_view text);
  // A new alert has the style Warning. No effect on Linux, where all alerts look alike; kept for systems
  // whose alerts differ by style.
  void setAlertStyle(Style style);
  // The icon is scaled down to at most 64 points. nullptr shows no icon.
  void setIcon(std::shared_ptr<Image> icon);

  // Shows the alert, with its present contents, as a sheet at the upper edge of the window's content area and
  // returns at once. The alert object may be destroyed immediately. Until the user answers, the rest of the
  // window takes no input and its close control does nothing; other windows are unaffected. If the window
  // already has a sheet, this one is shown after it.
  //
  // The run loop calls `didEnd` with the number of the pressed button after the sheet has been removed.
  // `didEnd` may begin another sheet. It is not called if the window is closed or destroyed first, or if the
  // program ends.
  void beginSheetModalForWindow(const std::shared_ptr<Window>& window, std::function<void(int)> didEnd);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
