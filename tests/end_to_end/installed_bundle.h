#pragma once

#include <optional>
#include <string>

// A copy of the built bundle. launchctl, open, osascript and the hidden web view are programs in it that
// report to the time line, the web view as "run: beacon ADDRESS". Its product server is one that refuses
// connections, unless the test names another.
class InstalledBundle {
 public:
  // What the property file of the main application says; nullopt leaves a key out.
  struct Properties {
    std::optional<bool> autorun = true;
    std::optional<bool> active = true;
  };

  // Copies the built bundle to `path`. `program` takes the agent's place where it is given.
  void install(const std::string& path, const std::string& program = {});
  void writeProperties(const Properties& properties);
  // Points the installed agent at this product server, an origin, and at this one for test uploads.
  void setServers(const std::string& product, const std::string& testUpload = kNobody);
  // Gives the installed agent the real web view, which loads its beacons from the product server.
  void installWebView();

  [[nodiscard]] std::string agentContents() const {
    return bundle_ + "/Contents/Resources/TovalinTray.app/Contents";
  }
  [[nodiscard]] std::string agentProgram() const { return agentContents() + "/MacOS/TovalinTray"; }

  static constexpr const char* kNobody = "http://127.0.0.1:1";

  // Where it was installed; empty before.
  std::string bundle_;
};
