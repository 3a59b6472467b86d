#include "app/launch_rules.h"

#include <cstddef>

#include "platform/text_case.h"

namespace {

// Frozen: doc/compatibility.md.
constexpr std::string_view agentPathSuffix = "/Contents/Resources/TovalinTray.app";
constexpr std::size_t commandBufferSize = 1024;

}  // namespace

bool isDarkAppearance(const std::optional<platform::PropertyList>& interfaceStyle) {
  const auto* style = interfaceStyle ? interfaceStyle->as<std::string>() : nullptr;
  return style != nullptr && platform::equalIgnoringCase(*style, "dark");
}

std::optional<std::string> mainApplicationBundlePath(std::string_view agentBundlePath) {
  const std::size_t found = agentBundlePath.find(agentPathSuffix);
  if (found == std::string_view::npos || found == 0) return std::nullopt;
  return std::string(agentBundlePath).erase(found, agentPathSuffix.size());
}

std::optional<std::string> updateNoticeCommand(std::string_view bundlePath) {
  const std::string path(bundlePath);
  // Frozen: doc/compatibility.md.
  std::string command = "open -a " + path +
                        "/Contents/Resources/tovalinnotification.app --args -title \"Tovalin Notification\" "
                        "-subtitle \"New version available\" -message \"Do you want to install now?\" "
                        "-closeLabel No -actions Yes -bundlepath " +
                        path + " -timeout 10";
  if (command.size() >= commandBufferSize) return std::nullopt;
  return command;
}
