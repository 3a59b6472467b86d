// tray_host_double: fakes a desktop's tray for tray items. Runs in its own process, because the programs
// under test block on its replies.

#include <QCoreApplication>
#include <QDBusConnection>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/tray_host.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  TrayHost host(QDBusConnection::sessionBus());
  if (!host.publish()) {
    say("error no bus, or another tray is on it");
    return 1;
  }
  const CommandLines commands([&](const QString& line) { host.handle(line); });
  say("ready");
  return QCoreApplication::exec();
}
