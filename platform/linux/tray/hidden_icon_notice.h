#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <QDBusPendingCallWatcher>
#include <QObject>

namespace platform {

// A notification of the desktop (org.freedesktop.Notifications) for a program whose icon no panel shows, at
// most once in a session: a file in the private folder, which lasts as long as the session, says that it was
// shown. Without that folder it is shown at each start. Nothing waits for the bus. Main thread.
class HiddenIconNotice : public QObject {
  Q_OBJECT
 public:
  // Asks `isHidden` once, after `patience`.
  HiddenIconNotice(std::chrono::milliseconds patience, std::string title, std::string text,
                   std::function<bool()> isHidden);

 private:
  void show();
  void takeAnswer();

  std::string title_;
  std::string text_;
  std::string mark_;  // the file's path, if it was made
  std::unique_ptr<QDBusPendingCallWatcher> answer_;
};

}  // namespace platform
