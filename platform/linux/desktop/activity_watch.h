#pragma once

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

namespace platform {

// Reports when the user switches from this program's windows to another program's, and back. Main thread
// only.
//
// Qt also reports the program as inactive while a panel or the window manager has the input focus for a
// moment, and before the first window has received it. This class reports inactivity only when the program
// was active and the focused window belongs to another program.
class ActivityWatch : public QObject, private QAbstractNativeEventFilter {
 public:
  explicit ActivityWatch(std::function<void(bool active)> changed);
  ~ActivityWatch() override;

 private:
  void stateChanged(Qt::ApplicationState state);
  void look();
  void report(bool active);
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  std::function<void(bool)> changed_;
  bool active_ = false;
  QTimer settle_;
  std::uint32_t focusProperty_ = 0;
};

}  // namespace platform
