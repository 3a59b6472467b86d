#pragma once

#include <chrono>
#include <functional>

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QTimer>

namespace platform {

// The timeout for a host's first call to the exported menu after Activate has failed.
inline constexpr std::chrono::milliseconds hostMenuPatience{500};
// A call of the menu so shortly before or after Activate shows that the host opens the menu itself.
inline constexpr std::chrono::milliseconds hostMenuNearness{2000};

// Opens the agent's own menu for hosts that call Activate and do not open the exported menu when the call
// fails with UnknownMethod, such as the panels of MATE and LXQt. Such a host is recognised when it has not
// called the exported menu within the timeout; from then on Activate succeeds and opens the menu at once.
// GNOME calls the menu at the first press of a double click and Activate at the second. Main thread only.
class HostMenuWait : public QObject {
  Q_OBJECT
 public:
  // Calls `openMenu` from the run loop.
  explicit HostMenuWait(std::function<void()> openMenu);

  // Handles a call of Activate by a host with this unique bus name. Returns whether the call succeeds.
  [[nodiscard]] bool activate(const QString& host);
  // Handles a call of the exported menu.
  void noteMenuCall();

 private:
  void giveUp();

  std::function<void()> openMenu_;
  QTimer timer_;
  QElapsedTimer menuCall_;  // since the last call of the menu
  QElapsedTimer gaveUp_;    // since the agent last opened its own menu
  QString askedHost_;
  QString hostWithoutMenus_;
};

}  // namespace platform
