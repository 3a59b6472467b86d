#include "platform/view.h"

#include <utility>

#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/windows/view_impl.h"

namespace platform {
namespace {

// In programs built for macOS 14 or later, NSView does not clip drawing to its bounds by default.
void clip(NSView* view) {
  if ([view respondsToSelector:@selector(setClipsToBounds:)]) [view setClipsToBounds:YES];
}

}  // namespace

View::Impl::Impl(Rect rect, NSView* body) : frame(rect), view(body) {
  clip(body);
}

View::View(Rect frame)
    : View(std::make_unique<Impl>(frame, [[NSView alloc] initWithFrame:nativeRect(frame)])) {}
View::View(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
View::~View() = default;

Rect View::frame() const {
  return impl_->frame;
}

Rect View::bounds() const {
  return {0, 0, impl_->frame.width, impl_->frame.height};
}

void View::setAccessibilityLabel(std::string_view label) {
  id element = impl_->view.get();  // declared in NSAccessibility
  [element setAccessibilityLabel:textOf(label)];
}

void View::addSubview(std::shared_ptr<View> view) {
  [impl_->view.get() addSubview:view->impl().view.get()];
  impl_->subviews.push_back(std::move(view));
}

}  // namespace platform
