// The main function of test programs that use windows, menus or the bus: runs them on a private display and
// session bus.
#include <gtest/gtest.h>

#include <cstdio>

#include <QApplication>

#include "tests/harness/desktop/session_bus.h"
#include "tests/harness/desktop/test_display.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  test_support::SessionBus bus;
  test_support::TestDisplay display;
  if (!bus.start() || !display.start()) {
    std::fputs("no session bus or no display came up\n", stderr);
    return 1;
  }
  qputenv("DBUS_SESSION_BUS_ADDRESS", QByteArray::fromStdString(bus.address()));
  qputenv("DISPLAY", QByteArray::fromStdString(display.name()));

  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  const int result = RUN_ALL_TESTS();
  // Closed windows are deleted by a posted event, and their widgets need the application object.
  QCoreApplication::processEvents();
  return result;
}
