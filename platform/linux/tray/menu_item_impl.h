#pragma once

#include <functional>
#include <string>

#include <QAction>

#include "platform/menu_item.h"
#include "platform/web_view.h"

namespace platform {

struct MenuItem::Impl {
  // Further clicks are dropped: a program on the session bus may send them faster than the actions complete.
  static constexpr int maxPending = 64;

  std::string title;
  std::function<void()> action;
  std::unique_ptr<WebView> view;
  QAction line;
  int pending = 0;  // clicks whose action has not begun

  void choose();
};

}  // namespace platform
