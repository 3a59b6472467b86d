#include "platform/menu.h"

#include <algorithm>

#include "platform/linux/tray/menu_impl.h"
#include "platform/linux/tray/menu_item_impl.h"

namespace platform {

Menu::Menu() : impl_(std::make_unique<Impl>()) {}
Menu::~Menu() = default;

MenuItem& Menu::addItem(std::unique_ptr<MenuItem> item) {
  impl_->widget.addAction(&item->impl().line);
  return *impl_->items.emplace_back(std::move(item));
}

MenuItem* Menu::itemWithTitle(std::string_view title) const {
  const auto found =
      std::ranges::find_if(impl_->items, [&](const auto& item) { return item->title() == title; });
  return found == impl_->items.end() ? nullptr : found->get();
}

}  // namespace platform
