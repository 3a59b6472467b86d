// The main of test programs that use windows, menus or the bus: on a display and a session bus of their own.
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
  // Closed windows are released by a posted event, and widgets need the application for their destruction.
  QCoreApplication::processEvents();
  return result;
}
