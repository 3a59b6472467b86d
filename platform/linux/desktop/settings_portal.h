#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

namespace platform {

// The desktop's settings portal (org.freedesktop.portal.Settings), of which one key is asked: whether the
// user prefers a dark appearance. Main thread only.
class SettingsPortal : public QObject {
  Q_OBJECT
 public:
  // Listens from its first use on and lives as long as the process.
  [[nodiscard]] static SettingsPortal& shared();

  // Asks anew; blocks for 500 ms at most. False also when nobody answers.
  [[nodiscard]] bool readPrefersDark();
  // Calls `observer` each time the preference changes from dark to not dark or back.
  void onChange(std::function<void()> observer) { observers_.push_back(std::move(observer)); }

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& message);

 private:
  SettingsPortal();
  void setDark(bool dark);
  void takeChange(bool dark);
  void askWithoutWaiting();

  QDBusServiceWatcher comings_;
  bool dark_ = false;
  std::vector<std::function<void()>> observers_;
};

// Whether the value of org.freedesktop.appearance color-scheme means dark; variants in variants are looked
// through.
[[nodiscard]] bool isDarkColorScheme(const QVariant& value);

}  // namespace platform
