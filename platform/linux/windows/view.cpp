#include "platform/view.h"

#include <algorithm>

#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/view_impl.h"

namespace platform {
namespace {

using Views = std::vector<const View*>;

void collectControls(const View& root, Views& views) {
  for (const auto& view : root.impl().subviews) {
    // QWidget::setTabOrder ignores widgets that do not accept the focus.
    if ((view->impl().widget->focusPolicy() & Qt::TabFocus) != 0) views.push_back(view.get());
    collectControls(*view, views);
  }
}

}  // namespace

void setTabOrderByCreation(const View& root) {
  Views views;
  collectControls(root, views);
  std::ranges::stable_sort(views, {}, [](const View* view) { return view->impl().createdAt; });
  for (std::size_t i = 1; i < views.size(); ++i)
    QWidget::setTabOrder(views[i - 1]->impl().widget.get(), views[i]->impl().widget.get());
  if (root.impl().widget->focusWidget() != nullptr) return;
  const auto first =
      std::ranges::find_if(views, [](const View* view) { return view->impl().widget->isEnabled(); });
  if (first != views.end()) (*first)->impl().widget->setFocus();
}

QRect toQtRect(Rect rect, double parentHeight) {
  return QRectF(rect.x, parentHeight - rect.y - rect.height, rect.width, rect.height).toRect();
}

View::Impl::Impl(Rect rect, std::unique_ptr<QWidget> body) : frame(rect), widget(std::move(body)) {
  widget->resize(toQtRect(rect, 0).size());
}

// Detaches the subviews' widgets, which QWidget would otherwise delete although callers may still own the
// views.
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
  impl_->widget->setAccessibleName(textOf(label));
}

void View::addSubview(std::shared_ptr<View> view) {
  QWidget& child = *view->impl().widget;
  child.setParent(impl_->widget.get());
  child.setGeometry(toQtRect(view->frame(), impl_->frame.height));
  child.show();
  impl_->subviews.push_back(std::move(view));
}

}  // namespace platform
