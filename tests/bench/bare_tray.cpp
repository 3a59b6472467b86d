// bare_tray URL: the reference for the agent. Makes one fetch and shows a tray icon with a menu of the
// agent's length.

#include <curl/curl.h>

#include <QApplication>
#include <QMenu>
#include <QSystemTrayIcon>

namespace {

std::size_t drop(char*, std::size_t, std::size_t size, void*) {
  return size;
}

bool fetch(const char* url) {
  CURL* handle = curl_easy_init();
  curl_easy_setopt(handle, CURLOPT_URL, url);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, drop);
  const bool fetched = curl_easy_perform(handle) == CURLE_OK;
  curl_easy_cleanup(handle);
  return fetched;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  if (argc != 2 || !fetch(argv[1])) return 2;
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
