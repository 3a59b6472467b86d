#include "tests/platform/linux/windows/window_fixture.h"

#include <cstdlib>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QWindow>

#include "platform/linux/windows/view_impl.h"
#include "platform/linux/windows/window_impl.h"
#include "tests/harness/desktop/x_input.h"
#include "tests/harness/desktop/x_picture.h"
#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/processes/child_process.h"

namespace {

QPoint onDisplay(const QWidget& widget, QPoint place) {
  const double scale = widget.devicePixelRatioF();
  const QPointF pixels = (QPointF(widget.mapToGlobal(place)) + QPointF(0.5, 0.5)) * scale;
  return {static_cast<int>(pixels.x()), static_cast<int>(pixels.y())};
}

}  // namespace

std::string WindowFixture::display() {
  return qEnvironmentVariable("DISPLAY").toStdString();
}

QWidget& WindowFixture::widgetOf(const platform::View& view) {
  return *view.impl().widget;
}

QWidget& WindowFixture::widgetOf(const platform::Window& window) {
  return window.impl().widget;
}

bool WindowFixture::show(platform::Window& window) {
  window.makeKeyAndOrderFront();
  const QWidget& widget = widgetOf(window);
  // Qt may report the input focus before the window manager has handled all requests.
  return serveEventsUntil([&] {
    return widget.isActiveWindow() && widget.geometry().top() > widget.frameGeometry().top() &&
           test_support::activeWindowOn(display()) == widget.windowHandle()->winId();
  });
}

void WindowFixture::click(const QWidget& widget, QPoint place) {
  const QPoint pixel = onDisplay(widget, place);
  EXPECT_TRUE(test_support::clickMouse(display(), pixel.x(), pixel.y()));
}

void WindowFixture::point(const QWidget& widget, QPoint place) {
  const QPoint pixel = onDisplay(widget, place);
  EXPECT_TRUE(test_support::moveMouse(display(), pixel.x(), pixel.y()));
}

void WindowFixture::press(const std::string& key) {
  EXPECT_TRUE(test_support::pressKey(display(), key));
}

// Waits for the release of a key without function, which arrives after all earlier input.
bool WindowFixture::settle(platform::Window& window) {
  class Watch : public QObject {
   public:
    bool seen = false;
    bool eventFilter(QObject*, QEvent* event) override {
      if (event->type() == QEvent::KeyRelease)
        seen = seen || static_cast<QKeyEvent*>(event)->key() == Qt::Key_F9;
      return false;
    }
  };
  Watch watch;
  widgetOf(window).windowHandle()->installEventFilter(&watch);
  press("F9");
  return serveEventsUntil([&] { return watch.seen; });
}

QColor WindowFixture::colorAt(const QWidget& widget, QPoint place) {
  const QPoint pixel = onDisplay(widget, place);
  const auto colour = test_support::colourAt(display(), pixel.x(), pixel.y());
  return colour ? QColor(colour->red, colour->green, colour->blue) : QColor();
}

void WindowFixture::savePicture(const std::string& name) {
  const char* folder = std::getenv("TOVALIN_PICTURES");
  if (folder == nullptr) return;
  const std::string scale = std::to_string(static_cast<int>(qGuiApp->devicePixelRatio()));
  test_support::ChildProcess picture;
  ASSERT_TRUE(picture.start({"import", "-display", display(), "-window", "root",
                             std::string(folder) + "/" + name + "-" + scale + "x.png"}));
  EXPECT_EQ(picture.wait(), test_support::ExitStatus{.code = 0});
}

void WindowFixture::holdReturnAndPressItAgain(QWidget& widget) {
  const auto send = [&widget](QEvent::Type type, quint64 time, bool isRepetition = false) {
    QKeyEvent event(type, Qt::Key_Return, Qt::NoModifier, {}, isRepetition);
    event.setTimestamp(time);
    QCoreApplication::sendEvent(&widget, &event);
  };
  send(QEvent::KeyPress, 1000);
  for (const quint64 time : {1500U, 1540U}) {
    send(QEvent::KeyRelease, time);
    send(QEvent::KeyPress, time);
  }
  send(QEvent::KeyRelease, 1580, true);
  send(QEvent::KeyPress, 1580, true);
  send(QEvent::KeyRelease, 1600);
  send(QEvent::KeyPress, 2000);
  send(QEvent::KeyRelease, 2010);
}
