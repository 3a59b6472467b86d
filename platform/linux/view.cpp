#include "platform/view.h"

#include "platform/linux/view_impl.h"

namespace platform {

QRect fromTop(Rect rect, double roomHeight) {
  return QRectF(rect.x, roomHeight - rect.y - rect.height, rect.width, rect.height).toRect();
}

View::Impl::Impl(Rect rect, std::unique_ptr<QWidget> body) : frame(rect), widget(std::move(body)) {
  widget->resize(fromTop(rect, 0).size());
}

// The toolkit's parent would destroy the widgets of subviews that somebody else still keeps.
View::Impl::~Impl() {
  for (const auto& view : subviews) view->impl().widget->setParent(nullptr);
}

View::View(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<QWidget>())) {}
View::View(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
View::~View() = default;

Rect View::frame() const {
  return impl_->frame;
}

Rect View::bounds() const {
  return {0, 0, impl_->frame.width, impl_->frame.height};
}

void View::setAccessibilityLabel(std::string_view label) {
  impl_->widget->setAccessibleName(QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())));
}

void View::addSubview(std::shared_ptr<View> view) {
  QWidget& child = *view->impl().widget;
  child.setParent(impl_->widget.get());
  child.setGeometry(fromTop(view->frame(), impl_->frame.height));
  child.show();
  impl_->subviews.push_back(std::move(view));
}

}  // namespace platform
