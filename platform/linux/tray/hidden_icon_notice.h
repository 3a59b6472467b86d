#pragma once

#include <chrono>
#include <memory>
#include <string>

#include <QDBusPendingCallWatcher>
#include <QObject>
#include <QTimer>

namespace platform {

// Sends a desktop notification (org.freedesktop.Notifications) if no panel shows the program's icon for some
// time, at most once per session: a file in the private folder, which exists until the session ends, records
// it. Without that folder, each such time sends one. While GNOME's session is locked, its panel is not
// missed. No call waits for the bus. Main thread only.
class HiddenIconNotice : public QObject {
  Q_OBJECT
 public:
  // The icon counts as shown until setHidden is called.
  HiddenIconNotice(std::chrono::milliseconds patience, std::string title, std::string text);

  // Sends the notification if the icon stays hidden for the patience.
  void setHidden(bool hidden);

 private:
  void askAboutLock();
  void takeLock();
  void show();
  void takeAnswer();

  QTimer patience_;
  std::string title_;
  std::string text_;
  std::string mark_;  // path of that file; empty before, or without the folder
  std::unique_ptr<QDBusPendingCallWatcher> lock_;
  std::unique_ptr<QDBusPendingCallWatcher> answer_;
};

}  // namespace platform
