#pragma once

#include <functional>
#include <string>

#include <QAction>

#include "platform/menu_item.h"
#include "platform/web_view.h"

namespace platform {

struct MenuItem::Impl {
  // A program on the session bus may send clicks faster than the actions are done; those beyond this are
  // dropped.
  static constexpr int maxPending = 64;

  std::string title;
  std::function<void()> action;
  std::unique_ptr<WebView> view;
  QAction line;
  int pending = 0;  // clicks whose action has not begun

  void choose();
};

}  // namespace platform
