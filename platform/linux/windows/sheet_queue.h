#pragma once

#include <deque>
#include <functional>
#include <memory>

#include <QWidget>

#include "platform/linux/windows/input_mark.h"
#include "platform/linux/windows/sheet.h"

namespace platform {

// The sheets of one window: one is shown, the others wait. Main thread only. `window` must outlive the queue.
class SheetQueue {
 public:
  explicit SheetQueue(QWidget& window) : window_(window), inputMark_(window) {}

  // Shows the sheet once the previous ones have ended. The run loop calls `didEnd` with the index of the
  // clicked button, after the window has been repainted without the sheet. No-op after `close`.
  void begin(SheetContent content, std::function<void(int)> didEnd);
  // Returns whether a sheet is shown, or `didEnd` of an answered one, or work that it posted, is still to run
  // and may begin the next sheet.
  [[nodiscard]] bool isUp() const { return current_ != nullptr || pendingEnds_ > 0; }
  // Dismisses all sheets without calling `didEnd`, and ignores further ones.
  void close();

 private:
  struct Waiting {
    SheetContent content;
    std::function<void(int)> didEnd;
  };
  void showNext();
  void end(int index, const std::function<void(int)>& didEnd);
  void reportEnd(int index, const std::function<void(int)>& didEnd);
  void finishEnd();
  // Deletes the sheet with deleteLater, because Qt may still be handling an event in it.
  void closeCurrent();

  QWidget& window_;
  InputMark inputMark_;
  bool closed_ = false;
  int pendingEnds_ = 0;
  std::unique_ptr<Sheet> current_;
  std::deque<Waiting> waiting_;
};

}  // namespace platform
