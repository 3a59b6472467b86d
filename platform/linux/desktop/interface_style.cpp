#include "platform/interface_style.h"

#include "platform/linux/desktop/settings_portal.h"

namespace platform {

std::optional<PropertyList> interfaceStyle() {
  if (!SettingsPortal::shared().readPrefersDark()) return std::nullopt;
  return PropertyList(std::string("Dark"));
}

}  // namespace platform
