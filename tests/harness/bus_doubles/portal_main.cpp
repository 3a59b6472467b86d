// portal_double: a fake desktop portal with the color-scheme setting, controlled over standard input.

#include <optional>

#include <QCoreApplication>
#include <QDBusConnection>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/settings_portal_service.h"

namespace {

// "1" is the unsigned number that desktops send; other types are named: "int 1", "string TEXT", "bool true",
// "double 1.5", "list A".
std::optional<QVariant> parseValue(const QString& text) {
  const auto [type, rest] = splitCommand(text);
  bool isNumber = false;
  const uint number = text.toUInt(&isNumber);
  if (isNumber) return number;
  if (type == "int") return rest.toInt();
  if (type == "string") return rest;
  if (type == "bool") return rest == "true";
  if (type == "double") return rest.toDouble();
  if (type == "list") return QStringList{rest};
  return std::nullopt;
}

void set(SettingsPortalService& portal, const QString& text, bool tell) {
  const std::optional<QVariant> value = parseValue(text);
  if (!value) return say("error no value " + text);
  portal.setValue(*value);
  if (tell) portal.signalChange();
  say("ok");
}

void handle(SettingsPortalService& portal, const QString& line) {
  const auto [word, rest] = splitCommand(line);
  if (word == "set") return set(portal, rest, true);
  if (word == "silent-set") return set(portal, rest, false);
  if (word == "absent") {
    portal.setValue({});
  } else if (word == "delay") {
    portal.setDelay(std::chrono::milliseconds(rest.toInt()));
  } else if (word == "other") {
    portal.signalUnrelatedChange();
  } else {
    return say("error unknown command " + word);
  }
  say("ok");
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  const bool hasValue = arguments.size() == 3 && arguments[1] == "--value";
  SettingsPortalService portal(QDBusConnection::sessionBus(),
                               hasValue ? parseValue(arguments[2]).value_or(QVariant()) : QVariant());
  if (!portal.publish()) {
    say("error no bus, or another portal is on it");
    return 1;
  }
  const CommandLines commands([&](const QString& line) { handle(portal, line); });
  say("ready");
  return QCoreApplication::exec();
}
