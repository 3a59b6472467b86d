#pragma once

#include <cstdint>
#include <functional>

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QTimer>

namespace platform {

// Tells when the user turns from this program's windows to another program's, and back.
//
// The toolkit also takes the program for inactive while a panel or the window manager holds the keyboard for
// a moment, and before the first window has got it. This tells only of a program that was active and whose
// keyboard now belongs to a window of another one. Main thread.
class ActivityWatch : public QObject, private QAbstractNativeEventFilter {
 public:
  explicit ActivityWatch(std::function<void(bool active)> changed);
  ~ActivityWatch() override;

 private:
  void stateChanged(Qt::ApplicationState state);
  void look();
  void tell(bool active);
  bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  std::function<void(bool)> changed_;
  bool active_ = false;
  QTimer settle_;
  std::uint32_t holderProperty_ = 0;
};

}  // namespace platform
