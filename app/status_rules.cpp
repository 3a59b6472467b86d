#include "app/status_rules.h"

StatusIcon statusIconFor(std::uint32_t active, bool darkMode) {
  if (active != 0) return darkMode ? StatusIcon::OnReverse : StatusIcon::On;
  return darkMode ? StatusIcon::OffReverse : StatusIcon::Off;
}

const char* switchTitleFor(std::uint32_t active) {
  return active != 0 ? switchOffTitle : switchOnTitle;
}
