#include "platform/global_defaults.h"

#include "platform/linux/desktop/settings_portal.h"

namespace platform {

std::optional<PropertyList> globalDefault(std::string_view key) {
  if (key != "AppleInterfaceStyle") return std::nullopt;
  if (!SettingsPortal::shared().readPrefersDark()) return std::nullopt;
  return PropertyList(std::string("Dark"));
}

}  // namespace platform
