#pragma once

#include <memory>
#include <vector>

#include "platform/linux/tray/bordered_menu.h"
#include "platform/menu.h"

namespace platform {

struct Menu::Impl {
  std::vector<std::unique_ptr<MenuItem>> items;
  BorderedMenu widget;
};

}  // namespace platform
