#include "platform/menu_item.h"

#include <utility>

#include "platform/application.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/images/image_impl.h"
#include "platform/macos/tray/menu_impl.h"
#include "platform/macos/web_view/web_view_impl.h"

namespace platform {
namespace {

// Posts the action, so that it runs after the menu has closed and its tracking loop has ended.
TovalinAction* postingAction(const std::function<void()>& action) {
  return makeAction([=] { Application::sharedApplication().performOnMainThread(action); });
}

}  // namespace

MenuItem::MenuItem(std::string_view title, std::function<void()> action) : impl_(std::make_unique<Impl>()) {
  const bool acts = action != nullptr;
  impl_->item = Retained<NSMenuItem*>([[NSMenuItem alloc] initWithTitle:textOf(title)
                                                                 action:acts ? @selector(perform:) : nullptr
                                                          keyEquivalent:@""]);
  setEnabled(acts);
  if (!acts) return;
  impl_->action = Retained<TovalinAction*>(postingAction(action));
  [impl_->item.get() setTarget:impl_->action.get()];
}

MenuItem::~MenuItem() = default;

std::unique_ptr<MenuItem> MenuItem::separatorItem() {
  auto item = std::make_unique<MenuItem>("", nullptr);
  item->impl_->item = retained<NSMenuItem*>([NSMenuItem separatorItem]);
  return item;
}

std::string MenuItem::title() const {
  return utf8Of([impl_->item.get() title]);
}

void MenuItem::setTitle(std::string_view title) {
  [impl_->item.get() setTitle:textOf(title)];
}

void MenuItem::setEnabled(bool enabled) {
  [impl_->item.get() setEnabled:enabled];
}

void MenuItem::setImage(const std::shared_ptr<Image>& image) {
  [impl_->item.get() setImage:image == nullptr ? nil : image->impl().image.get()];
}

void MenuItem::setView(std::unique_ptr<WebView> view) {
  impl_->view = std::move(view);
  [impl_->item.get() setView:impl_->view == nullptr ? nil : impl_->view->impl().view.get()];
}

}  // namespace platform
