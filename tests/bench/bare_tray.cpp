// The least that shows an icon with a menu of the agent's length in a panel.

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QPixmap pixmap(20, 20);
  pixmap.fill(Qt::black);
  QMenu menu;
  for (const char* title :
       {"Automount Off", "", "Like us on Facebook", "Share Tovalin on Facebook", "Share Tovalin on Twitter",
        "", "Visit our website now", "Review Tovalin", "Support Tovalin", "", "Quit Tovalin"}) {
    if (*title == '\0') {
      menu.addSeparator();
    } else {
      menu.addAction(QString::fromLatin1(title));
    }
  }
  QSystemTrayIcon icon{QIcon(pixmap)};
  icon.setContextMenu(&menu);
  icon.show();
  return QApplication::exec();
}
