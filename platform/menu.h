#pragma once

#include <memory>
#include <string_view>

#include "platform/menu_item.h"

namespace platform {

// A menu; its items are listed from top to bottom. Main thread only.
class Menu {
 public:
  Menu();
  ~Menu();
  Menu(const Menu&) = delete;
  Menu& operator=(const Menu&) = delete;

  // Appends the item and takes ownership of it. Returns a reference to it.
  MenuItem& addItem(std::unique_ptr<MenuItem> item);

  // Returns the first item with exactly this title, or nullptr if there is none. The menu owns the item.
  [[nodiscard]] MenuItem* itemWithTitle(std::string_view title) const;

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
