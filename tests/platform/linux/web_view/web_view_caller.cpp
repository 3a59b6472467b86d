// web_view_caller HELPER ADDRESS: makes HELPER load ADDRESS, then kills itself with SIGKILL.
#include <signal.h>

#include <QCoreApplication>

#include "platform/linux/web_view/web_view_process.h"

int main(int argc, char** argv) {
  if (argc < 3) return 1;
  const QCoreApplication application(argc, argv);
  platform::WebViewProcess process;
  process.send(argv[1], argv[2]);
  ::raise(SIGKILL);
}
