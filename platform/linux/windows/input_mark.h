#pragma once

#include <cstdint>
#include <optional>

#include <QAbstractNativeEventFilter>

class QInputEvent;
class QWidget;

namespace platform {

// Separates input that arrived while the program was busy from later input, by the X server's timestamps. The
// mark is a change to a property of the window: the server reports it with its time, after all earlier
// events. Main thread only. `window` must outlive this object.
class InputMark : private QAbstractNativeEventFilter {
 public:
  explicit InputMark(const QWidget& window);
  ~InputMark() override;

  // Sets the mark to the current time.
  void set();
  // Returns whether `input` was made before the mark. Returns false if no mark has been set.
  [[nodiscard]] bool isAfter(const QInputEvent& input) const;

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  const QWidget& window_;
  std::uint32_t property_ = 0;
  bool isPending_ = false;
  std::optional<std::uint32_t> time_;  // in ms of server time, which wraps every 50 days
};

}  // namespace platform
