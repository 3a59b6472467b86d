#include "platform/view.h"

#include <algorithm>
#include <utility>

#include <QAbstractButton>

#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/view_impl.h"

namespace platform {
namespace {

using Widgets = std::vector<QWidget*>;

void collectControls(const View& root, Widgets& controls) {
  for (const auto& view : root.impl().subviews) {
    QWidget* widget = view->impl().widget.get();
    // QWidget::setTabOrder ignores widgets that do not accept the focus.
    if ((widget->focusPolicy() & Qt::TabFocus) != 0) controls.push_back(widget);
    collectControls(*view, controls);
  }
}

std::pair<int, int> rowAndColumn(const QWidget* widget) {
  const QPoint place = widget->mapTo(widget->window(), QPoint(0, 0));
  return {place.y(), place.x()};
}

QWidget* initialFocus(const Widgets& controls) {
  const auto isEnabled = [](const QWidget* widget) { return widget->isEnabled(); };
  const auto isEnabledButton = [](const QWidget* widget) {
    return widget->isEnabled() && qobject_cast<const QAbstractButton*>(widget) != nullptr;
  };
  auto found = std::ranges::find_if(controls, isEnabledButton);
  if (found == controls.end()) found = std::ranges::find_if(controls, isEnabled);
  return found == controls.end() ? nullptr : *found;
}

}  // namespace

void setTabOrderByPlace(const View& root) {
  Widgets controls;
  collectControls(root, controls);
  std::ranges::stable_sort(controls, {}, rowAndColumn);
  for (std::size_t i = 1; i < controls.size(); ++i) QWidget::setTabOrder(controls[i - 1], controls[i]);
  if (root.impl().widget->focusWidget() != nullptr) return;
  if (QWidget* first = initialFocus(controls)) first->setFocus();
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
