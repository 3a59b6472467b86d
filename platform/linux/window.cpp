#include "platform/window.h"

#include <malloc.h>

#include <functional>

#include <QCloseEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include "platform/linux/view_impl.h"
#include "platform/linux/window_impl.h"
#include "platform/linux/x_requests.h"

namespace platform {
namespace {

// A window whose title bar has no close control is not closed by other means either.
class WindowWidget : public QWidget {
 public:
  std::function<void()> closed;

  explicit WindowWidget(WindowStyle style) : style_(style) {
    const Qt::WindowFlags titled = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    setWindowFlags(style == WindowStyle::Titled ? titled : titled | Qt::WindowCloseButtonHint);
  }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->setAccepted(style_ == WindowStyle::TitledClosable);
    if (event->isAccepted()) closed();
  }

 private:
  WindowStyle style_;
};

class ContentView : public View {
 public:
  ContentView(Rect frame, WindowStyle style)
      : View(std::make_unique<Impl>(frame, std::make_unique<WindowWidget>(style))) {}
};

}  // namespace

bool isWindowOfProgram(const QWidget& window) {
  return dynamic_cast<const WindowWidget*>(&window) != nullptr;
}

Window::Impl::Impl(Rect contentRect, WindowStyle style)
    : content(std::make_unique<ContentView>(Rect{0, 0, contentRect.width, contentRect.height}, style)),
      widget(*content->impl().widget) {
  widget.setFixedSize(widget.size());
  static_cast<WindowWidget&>(widget).closed = [this] { releaseOnceIdle(); };
}

// The toolkit still works on the widget that is being closed.
void Window::Impl::releaseOnceIdle() {
  QMetaObject::invokeMethod(
      qApp, [self = std::move(onScreen)] {}, Qt::QueuedConnection);
}

bool Window::Impl::isOnScreen() const {
  return widget.isVisible() && !widget.isMinimized() && widget.windowHandle() != nullptr &&
         widget.windowHandle()->isExposed();
}

// On the window itself: the toolkit would make a new one for a changed flag of the widget.
void Window::Impl::setAboveOthers(bool above) {
  if (QWindow* window = widget.windowHandle()) window->setFlag(Qt::WindowStaysOnTopHint, above);
}

std::shared_ptr<Window> Window::make(Rect contentRect, WindowStyle style) {
  return std::shared_ptr<Window>(new Window(contentRect, style));
}

Window::Window(Rect contentRect, WindowStyle style) : impl_(std::make_unique<Impl>(contentRect, style)) {}

Window::~Window() {
  impl_.reset();
  // Pictures and widgets leave holes behind; pages without anything in them go back to the system.
  ::malloc_trim(0);
}

void Window::setTitle(std::string_view title) {
  impl_->widget.setWindowTitle(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
}

View& Window::contentView() const {
  return *impl_->content;
}

void Window::center() {
  QRect place(QPoint(0, 0), impl_->widget.size());
  place.moveCenter(QGuiApplication::primaryScreen()->availableGeometry().center());
  impl_->widget.setGeometry(place);
}

void Window::makeKeyAndOrderFront() {
  impl_->onScreen = shared_from_this();
  impl_->widget.show();
  impl_->widget.raise();
  impl_->widget.activateWindow();
}

void Window::orderOut() {
  impl_->widget.hide();
  settleXRequests();
  // May be the last reference: nothing is touched after it.
  const auto self = std::move(impl_->onScreen);
}

bool Window::isVisible() const {
  return impl_->widget.isVisible();
}

}  // namespace platform
