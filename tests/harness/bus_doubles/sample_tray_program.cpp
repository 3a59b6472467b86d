// A program with a tray icon, for the tests of the fake tray host: prints the requests that it receives.

#include <cstdio>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

namespace {

QIcon squareOf(const QColor& colour) {
  QPixmap square(22, 22);
  square.fill(colour);
  return square;
}

void tell(const char* event) {
  std::puts(event);
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QSystemTrayIcon tray(squareOf(QColor(200, 100, 50)));
  tray.setToolTip("Sample tip");

  QMenu menu;
  QObject::connect(menu.addAction(squareOf(QColor(10, 20, 30)), "&Change"), &QAction::triggered, [&] {
    tray.setIcon(squareOf(Qt::blue));
    tell("changed");
  });
  menu.addSeparator();
  menu.addAction("Never")->setEnabled(false);
  menu.addAction("Hidden")->setVisible(false);
  QAction* tick = menu.addMenu("More")->addAction("Ticked");
  tick->setCheckable(true);
  tick->setChecked(true);
  QObject::connect(menu.addAction("Grow"), &QAction::triggered, [&] { menu.addAction("Grown"); });
  QObject::connect(menu.addAction("Quit"), &QAction::triggered, [] { std::_Exit(0); });
  QObject::connect(&tray, &QSystemTrayIcon::activated, [](QSystemTrayIcon::ActivationReason reason) {
    tell(reason == QSystemTrayIcon::Trigger ? "activated" : "other");
  });
  tray.setContextMenu(&menu);
  tray.show();
  return QApplication::exec();
}
