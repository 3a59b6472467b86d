#include "platform/window.h"

#include <QGuiApplication>
#include <QScreen>

#include "platform/linux/view_impl.h"

namespace platform {
namespace {

Qt::WindowFlags flagsFor(WindowStyle style) {
  const Qt::WindowFlags titled = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
  return style == WindowStyle::Titled ? titled : titled | Qt::WindowCloseButtonHint;
}

}  // namespace

struct Window::Impl {
  View content;
  QWidget& widget;

  explicit Impl(Rect rect) : content({0, 0, rect.width, rect.height}), widget(*content.impl().widget) {}
};

Window::Window(Rect contentRect, WindowStyle style) : impl_(std::make_unique<Impl>(contentRect)) {
  impl_->widget.setWindowFlags(flagsFor(style));
  impl_->widget.setFixedSize(impl_->widget.size());
}

Window::~Window() = default;

void Window::setTitle(std::string_view title) {
  impl_->widget.setWindowTitle(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
}

View& Window::contentView() const {
  return impl_->content;
}

void Window::center() {
  const QRect room = QGuiApplication::primaryScreen()->availableGeometry();
  const QSize size = impl_->widget.size();
  impl_->widget.move(room.center() - QPoint(size.width() / 2, size.height() / 2));
}

void Window::makeKeyAndOrderFront() {
  impl_->widget.show();
  impl_->widget.raise();
  impl_->widget.activateWindow();
}

void Window::orderOut() {
  impl_->widget.hide();
}

bool Window::isVisible() const {
  return impl_->widget.isVisible();
}

}  // namespace platform
