#include "tests/harness/desktop/tray_host_double.h"

#include <sstream>
#include <utility>

namespace test_support {
namespace {

std::pair<std::string, std::string> splitAt(const std::string& text, char mark) {
  const std::size_t place = text.find(mark);
  if (place == std::string::npos) return {text, {}};
  return {text.substr(0, place), text.substr(place + 1)};
}

TrayMenuItem parseItem(const std::string& line) {
  const std::string labelMark = " label=";
  const std::size_t labelAt = line.find(labelMark);
  std::map<std::string, std::string> facts;
  std::istringstream words(line.substr(0, labelAt));
  for (std::string word; words >> word;) facts.insert(splitAt(word, '='));
  return {.id = std::stoi(facts.at("id")),
          .parent = std::stoi(facts.at("parent")),
          .separator = facts.at("type") == "separator",
          .enabled = facts.at("enabled") == "true",
          .visible = facts.at("visible") == "true",
          .checked = facts.at("checked") == "true",
          .iconSize = facts.at("icon"),
          .label = line.substr(labelAt + labelMark.size())};
}

std::string at(int x, int y) {
  return " " + std::to_string(x) + " " + std::to_string(y);
}

}  // namespace

bool TrayHostDouble::start(const SessionBus& bus, const char* processName) {
  return LineProgram::start({TOVALIN_TRAY_HOST_DOUBLE, processName},
                            {.environment = {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}});
}

std::vector<std::string> TrayHostDouble::items() {
  return ask("items").lines;
}

std::map<std::string, std::string> TrayHostDouble::properties() {
  std::map<std::string, std::string> result;
  for (const std::string& line : ask("properties").lines) result.insert(splitAt(line, '='));
  return result;
}

std::vector<TrayMenuItem> TrayHostDouble::menu() {
  std::vector<TrayMenuItem> result;
  const Answer answer = ask("menu");
  result.reserve(answer.lines.size());
  for (const std::string& line : answer.lines) result.push_back(parseItem(line));
  return result;
}

bool TrayHostDouble::aboutToShow() {
  return ask("abouttoshow").ok;
}

bool TrayHostDouble::saveIcon(const std::string& file, const std::string& size) {
  return ask("icon " + file + " " + size).ok;
}

bool TrayHostDouble::saveMenuIcon(const std::string& label, const std::string& file) {
  return ask("menuicon " + label + " " + file).ok;
}

bool TrayHostDouble::click(const std::string& label) {
  return ask("click " + label).ok;
}

bool TrayHostDouble::clickKnown(const std::string& label) {
  return ask("clickknown " + label).ok;
}

bool TrayHostDouble::activate(int x, int y) {
  return ask("activate" + at(x, y)).ok;
}

bool TrayHostDouble::secondaryActivate(int x, int y) {
  return ask("secondary" + at(x, y)).ok;
}

bool TrayHostDouble::contextMenu(int x, int y) {
  return ask("contextmenu" + at(x, y)).ok;
}

bool TrayHostDouble::setHostRegistered(bool registered) {
  return ask(registered ? "host on" : "host off").ok;
}

}  // namespace test_support
