#include "app/status_rules.h"

StatusIcon statusIconFor(std::uint32_t active, bool darkMode) {
  if (active != 0) return darkMode ? StatusIcon::OnReverse : StatusIcon::On;
  return darkMode ? StatusIcon::OffReverse : StatusIcon::Off;
}

const char* symbolFor(StatusIcon icon) {
  switch (icon) {
    case StatusIcon::On:
      return "tovalin-mount-on-symbolic";
    case StatusIcon::Off:
      return "tovalin-mount-off-symbolic";
    case StatusIcon::OnReverse:
      return "tovalin-mount-on-reverse-symbolic";
    case StatusIcon::OffReverse:
      return "tovalin-mount-off-reverse-symbolic";
  }
  return "";
}

const char* stateTextFor(std::uint32_t active) {
  return active != 0 ? "Automount is on" : "Automount is off";
}

const char* switchTitleFor(std::uint32_t active) {
  return active != 0 ? switchOffTitle : switchOnTitle;
}
