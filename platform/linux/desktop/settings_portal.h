#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

namespace platform {

// Client of the desktop's settings portal (org.freedesktop.portal.Settings) for one key: whether the user
// prefers a dark appearance. Main thread only.
class SettingsPortal : public QObject {
  Q_OBJECT
 public:
  // Returns the only instance, which subscribes to changes on first use and is never destroyed.
  [[nodiscard]] static SettingsPortal& shared();

  // Reads the preference from the portal. Blocks for at most 500 ms. Returns false if there is no answer.
  [[nodiscard]] bool readPrefersDark();
  // Calls `observer` each time the preference changes from dark to not dark or back.
  void onChange(std::function<void()> observer) { observers_.push_back(std::move(observer)); }

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:
  SettingsPortal();
  void setDark(bool dark);
  void takeChange(bool dark);
  void readAsynchronously();

  QDBusServiceWatcher registrations_;
  bool dark_ = false;
  std::vector<std::function<void()>> observers_;
};

// Returns whether `value`, of org.freedesktop.appearance color-scheme, means dark. Unwraps nested variants.
[[nodiscard]] bool isDarkColorScheme(const QVariant& value);

}  // namespace platform
