// tray_host_double [NAME]: fakes a desktop's tray for tray items, as a process called NAME (default:
// xfce4-panel). Runs in its own process, because the programs under test block on its replies.

#include <sys/prctl.h>

#include <QCoreApplication>
#include <QDBusConnection>

#include "tests/harness/bus_doubles/command_lines.h"
#include "tests/harness/bus_doubles/tray_host.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  // A panel that recolours symbolic icons. The agent knows panels by their process.
  prctl(PR_SET_NAME, argc > 1 ? argv[1] : "xfce4-panel");
  TrayHost host(QDBusConnection::sessionBus());
  if (!host.publish()) {
    say("error no bus, or another tray is on it");
    return 1;
  }
  const CommandLines commands([&](const QString& line) { host.handle(line); });
  say("ready");
  return QCoreApplication::exec();
}
