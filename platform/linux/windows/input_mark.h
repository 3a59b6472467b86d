#pragma once

#include <cstdint>
#include <optional>

#include <QAbstractNativeEventFilter>

class QInputEvent;
class QWidget;

namespace platform {

// Tells the input that arrived while the program was busy from what came later, by the display's own time:
// that of a change to a property of the program's window, which the display reports behind all events before
// it. Main thread.
class InputMark : private QAbstractNativeEventFilter {
 public:
  explicit InputMark(const QWidget& window);
  ~InputMark() override;

  // Marks this moment.
  void set();
  // Whether the input was made before the mark. False where there is no mark yet.
  [[nodiscard]] bool isAfter(const QInputEvent& input) const;

 private:
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  const QWidget& window_;
  std::uint32_t property_ = 0;
  bool isAwaited_ = false;
  std::optional<std::uint32_t> time_;  // in the display's milliseconds, which start over every 50 days
};

}  // namespace platform
