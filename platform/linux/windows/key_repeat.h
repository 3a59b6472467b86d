#pragma once

#include <QKeyEvent>

namespace platform {

// Returns whether this key activates the focused control.
[[nodiscard]] inline bool activatesControl(int key) {
  return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space;
}

// Detects auto-repeated key presses. Qt misses some when the program was busy: it reports a release as final
// if the press that follows it has not been read yet. Both events then carry the same timestamp.
class KeyRepeat {
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
