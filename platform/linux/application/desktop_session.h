#pragma once

#include <functional>

#include <QObject>

namespace platform {

// The desktop session as its X session manager leads it (XSMP, spoken by the toolkit): tells its end, asks
// not to be started again with the next one, and stays when the session manager goes away. One per process,
// made after the toolkit; main thread.
class DesktopSession : public QObject {
 public:
  // Calls `ended` from the run loop, however deep that is nested.
  explicit DesktopSession(std::function<void()> ended);

 private:
  bool eventFilter(QObject* receiver, QEvent* event) override;

  std::function<void()> ended_;
};

}  // namespace platform
