#include "platform/status_item.h"

#include <string>
#include <utility>

#include "platform/application.h"
#include "platform/image.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/images/image_impl.h"
#include "platform/macos/tray/menu_impl.h"
#include "platform/menu.h"

namespace platform {

struct StatusItem::Impl {
  Retained<NSStatusItem*> item;
  std::unique_ptr<Menu> menu;
};

StatusItem::StatusItem(double length) : impl_(std::make_unique<Impl>()) {
  impl_->item = retained<NSStatusItem*>([[NSStatusBar systemStatusBar] statusItemWithLength:length]);
}

StatusItem::~StatusItem() {
  [[NSStatusBar systemStatusBar] removeStatusItem:impl_->item.get()];
}

void StatusItem::setTitle(std::string_view title) {
  [[impl_->item.get() button] setTitle:textOf(title)];
}

void StatusItem::setToolTip(std::string_view text) {
  [[impl_->item.get() button] setToolTip:text.empty() ? nil : textOf(text)];
}

// The pictures are drawn for both appearances of the menu bar, so the symbol is not needed.
void StatusItem::setImage(std::shared_ptr<Image> image, std::string_view symbol) {
  static_cast<void>(symbol);
  [[impl_->item.get() button] setImage:image == nullptr ? nil : image->impl().image.get()];
}

void StatusItem::setHighlightMode(bool highlights) {
  auto* cell = static_cast<NSButtonCell*>([[impl_->item.get() button] cell]);
  constexpr NSInteger changeBackground = 8;  // NSChangeBackgroundCellMask
  [cell setHighlightsBy:highlights ? changeBackground : 0];
}

void StatusItem::setMenu(std::unique_ptr<Menu> menu) {
  impl_->menu = std::move(menu);
  [impl_->item.get() setMenu:impl_->menu == nullptr ? nil : impl_->menu->impl().menu.get()];
}

Menu* StatusItem::menu() const {
  return impl_->menu.get();
}

// Posted, because performClick: returns only after the menu has closed.
void StatusItem::popUpMenu() {
  const auto item = std::make_shared<Retained<NSStatusItem*>>(retained(impl_->item.get()));
  Application::sharedApplication().performOnMainThread([=] { [[item->get() button] performClick:nil]; });
}

// The status bar shows every icon.
void StatusItem::notifyIfHidden(std::chrono::milliseconds patience, std::string_view title,
                                std::string_view text) {
  static_cast<void>(patience);
  static_cast<void>(title);
  static_cast<void>(text);
}

}  // namespace platform
