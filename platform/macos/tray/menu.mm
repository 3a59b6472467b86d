#include "platform/menu.h"

#include <algorithm>
#include <utility>

#include "platform/macos/tray/menu_impl.h"

namespace platform {

// Turns off automatic enabling, which depends on the responder chain and changes in modal runs.
Menu::Menu() : impl_(std::make_unique<Impl>()) {
  impl_->menu = Retained<NSMenu*>([[NSMenu alloc] initWithTitle:@""]);
  [impl_->menu.get() setAutoenablesItems:NO];
}

Menu::~Menu() = default;

MenuItem& Menu::addItem(std::unique_ptr<MenuItem> item) {
  [impl_->menu.get() addItem:item->impl().item.get()];
  return *impl_->items.emplace_back(std::move(item));
}

MenuItem* Menu::itemWithTitle(std::string_view title) const {
  const auto found =
      std::ranges::find_if(impl_->items, [&](const auto& item) { return item->title() == title; });
  return found == impl_->items.end() ? nullptr : found->get();
}

}  // namespace platform
