#include "tests/end_to_end/installed_bundle.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/end_to_end/test_desktop.h"
#include "tests/harness/processes/file_contents.h"

namespace fs = std::filesystem;

namespace {

std::string builtBundle() {
  const char* root = std::getenv("TOVALIN_BUNDLE_ROOT");
  return std::string(root == nullptr ? "" : root) + "/Tovalin.app";
}

std::string builtAgentContents() {
  return builtBundle() + "/Contents/Resources/TovalinTray.app/Contents";
}

}  // namespace

void InstalledBundle::install(const std::string& path, const std::string& program) {
  bundle_ = path;
  fs::remove_all(path);
  fs::create_directories(fs::path(path).parent_path());
  fs::copy(builtBundle(), path, fs::copy_options::recursive);
  if (!program.empty()) fs::copy_file(program, agentProgram(), fs::copy_options::overwrite_existing);
  for (const char* helper : {"launchctl", "open", "osascript"})
    placeRecorder(agentContents() + "/Helpers/" + helper);
  fs::copy_file(TOVALIN_WEB_VIEW_DOUBLE, agentContents() + "/Helpers/TovalinWebView",
                fs::copy_options::overwrite_existing);
  setServers(kClosedServer);
}

void InstalledBundle::installWebView() {
  fs::copy_file(builtAgentContents() + "/Helpers/TovalinWebView", agentContents() + "/Helpers/TovalinWebView",
                fs::copy_options::overwrite_existing);
}

void InstalledBundle::setServers(const std::string& product, const std::string& testUpload) {
  const std::string path = agentContents() + "/Info.plist";
  std::string list = test_support::contentsOf(builtAgentContents() + "/Info.plist");
  list.insert(list.rfind("</dict>"), "<key>TovalinProductServer</key><string>" + product +
                                         "</string><key>TovalinTestUploadServer</key><string>" + testUpload +
                                         "</string>");
  std::ofstream(path) << list;
}

void InstalledBundle::writeProperties(const Properties& properties) {
  std::ofstream file(bundle_ + "/Contents/TovalinPorperty.plist");
  const auto entry = [&](const char* key, std::optional<bool> value) {
    if (value) file << "<key>" << key << "</key>" << (*value ? "<true/>" : "<false/>");
  };
  file << "<plist version=\"1.0\"><dict>";
  entry("Autorun", properties.autorun);
  entry("Active", properties.active);
  file << "</dict></plist>";
}
