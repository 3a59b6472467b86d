#pragma once

#include <deque>
#include <functional>
#include <memory>

#include <QWidget>

#include "platform/linux/windows/input_mark.h"
#include "platform/linux/windows/sheet.h"

namespace platform {

// The sheets of one window: one is up, the others wait. Main thread.
class SheetQueue {
 public:
  explicit SheetQueue(QWidget& window) : window_(window), inputMark_(window) {}

  // Shows the sheet, once those before it have ended. `didEnd` is called by the run loop with the index of
  // the button, not before the window shows itself without the sheet.
  void begin(SheetContent content, std::function<void(int)> didEnd);
  // Whether a sheet is up, or one has been answered and what its answer leads to may still bring the next.
  [[nodiscard]] bool isUp() const { return current_ != nullptr || endsUnderWay_ > 0; }
  // Takes all of them away, unanswered, and takes no more.
  void close();

 private:
  struct Waiting {
    SheetContent content;
    std::function<void(int)> didEnd;
  };
  void showNext();
  void end(int index, const std::function<void(int)>& didEnd);
  void tellEnd(int index, const std::function<void(int)>& didEnd);
  void finishEnd();
  // The toolkit may still be at work on the sheet.
  void dropCurrent();

  QWidget& window_;
  InputMark inputMark_;
  bool closed_ = false;
  int endsUnderWay_ = 0;
  std::unique_ptr<Sheet> current_;
  std::deque<Waiting> waiting_;
};

}  // namespace platform
