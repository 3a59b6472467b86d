#pragma once

#include <memory>
#include <string_view>

#include "platform/menu_item.h"

namespace platform {

// A menu: items from top to bottom. Main thread only.
class Menu {
 public:
  Menu();
  ~Menu();
  Menu(const Menu&) = delete;
  Menu& operator=(const Menu&) = delete;

  // Appends the item, which the menu owns from here on. Returns it.
  MenuItem& addItem(std::unique_ptr<MenuItem> item);

  // The first item with exactly this title; nullptr when there is none. It lives as long as the menu.
  [[nodiscard]] MenuItem* itemWithTitle(std::string_view title) const;

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
