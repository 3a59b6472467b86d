// name_owner NAME: owns a name on the session bus until it is killed; exports no object.

#include <QCoreApplication>
#include <QDBusConnection>

#include "tests/harness/bus_doubles/command_lines.h"

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  auto bus = QDBusConnection::sessionBus();
  if (argc != 2 || !bus.registerService(QString::fromLocal8Bit(argv[1]))) return 1;
  say("ready");
  return QCoreApplication::exec();
}
