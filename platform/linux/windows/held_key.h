#pragma once

#include <QKeyEvent>

namespace platform {

// Whether this key presses the control that has the keyboard.
[[nodiscard]] inline bool pressesControl(int key) {
  return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space;
}

// Tells the repetitions of a key that is held down. The toolkit overlooks some when the program was busy: it
// takes a release for a real one while the press that follows is still to come. Both bear the same time.
class HeldKey {
 public:
  void noteRelease(const QKeyEvent& event) {
    key_ = event.key();
    releasedAt_ = event.timestamp();
  }
  [[nodiscard]] bool isRepeated(const QKeyEvent& press) const {
    return press.isAutoRepeat() || (press.key() == key_ && press.timestamp() == releasedAt_);
  }

 private:
  int key_ = 0;
  quint64 releasedAt_ = 0;
};

}  // namespace platform
