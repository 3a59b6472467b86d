#pragma once

#include <optional>
#include <string>

// A copy of the built bundle, in which launchctl, open, osascript and the hidden web view are programs that
// report to the timeline, the web view as "run: beacon ADDRESS". By default its product server refuses
// connections.
class InstalledBundle {
 public:
  // The contents of the main application's property file; nullopt omits a key.
  struct Properties {
    std::optional<bool> autorun = true;
    std::optional<bool> active = true;
  };

  // Copies the built bundle to `path`. `program` replaces the agent if given.
  void install(const std::string& path, const std::string& program = {});
  void writeProperties(const Properties& properties);
  // Sets the installed agent's product server and test upload server, each an origin.
  void setServers(const std::string& product, const std::string& testUpload = kClosedServer);
  // Installs the real web view, which loads its beacons from the product server.
  void installWebView();

  [[nodiscard]] std::string agentContents() const {
    return bundle_ + "/Contents/Resources/TovalinTray.app/Contents";
  }
  [[nodiscard]] std::string agentProgram() const { return agentContents() + "/MacOS/TovalinTray"; }

  static constexpr const char* kClosedServer = "http://127.0.0.1:1";

  // The path of the installation; empty before.
  std::string bundle_;
};
