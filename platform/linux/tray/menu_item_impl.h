#pragma once

#include <functional>
#include <string>

#include <QAction>

#include "platform/menu_item.h"
#include "platform/web_view.h"

namespace platform {

struct MenuItem::Impl {
  std::string title;
  std::function<void()> action;
  std::unique_ptr<WebView> view;
  QAction line;
};

}  // namespace platform
