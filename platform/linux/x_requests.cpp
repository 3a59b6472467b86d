#include "platform/linux/x_requests.h"

#include <QGuiApplication>

#include <X11/Xlib.h>

namespace platform {

void settleXRequests() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr) XSync(x11->display(), False);
}

}  // namespace platform
