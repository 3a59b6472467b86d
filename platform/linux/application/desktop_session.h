#pragma once

#include <functional>

#include <QObject>

namespace platform {

// Client of the X session manager, through Qt's XSMP support. Reports the end of the session, asks the
// session manager not to restart the program at the next login, and keeps the process running if the session
// manager disconnects. Main thread only. Create one per process, after QApplication.
class DesktopSession : public QObject {
 public:
  // Calls `ended` from the run loop, at any nesting depth.
  explicit DesktopSession(std::function<void()> ended);

 private:
  bool eventFilter(QObject* receiver, QEvent* event) override;

  std::function<void()> ended_;
};

}  // namespace platform
