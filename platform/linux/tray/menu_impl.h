#pragma once

#include <memory>
#include <vector>

#include <QMenu>

#include "platform/menu.h"

namespace platform {

struct Menu::Impl {
  std::vector<std::unique_ptr<MenuItem>> items;
  QMenu widget;
};

}  // namespace platform
