#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include <QDBusPendingCallWatcher>
#include <QObject>

namespace platform {

// Sends a desktop notification (org.freedesktop.Notifications) if no panel shows the program's icon, at most
// once per session: a file in the private folder, which exists until the session ends, records it. Without
// that folder, each start sends one. No call waits for the bus. Main thread only.
class HiddenIconNotice : public QObject {
  Q_OBJECT
 public:
  // Calls `isHidden` once, after `patience`.
  HiddenIconNotice(std::chrono::milliseconds patience, std::string title, std::string text,
                   std::function<bool()> isHidden);

 private:
  void show();
  void takeAnswer();

  std::string title_;
  std::string text_;
  std::string mark_;  // path of that file; empty before, or without the folder
  std::unique_ptr<QDBusPendingCallWatcher> answer_;
};

}  // namespace platform
