#pragma once

#import <Cocoa/Cocoa.h>

#include <memory>
#include <vector>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/retained.h"
#include "platform/menu.h"
#include "platform/web_view.h"

namespace platform {

struct Menu::Impl {
  Retained<NSMenu*> menu;
  std::vector<std::unique_ptr<MenuItem>> items;
};

struct MenuItem::Impl {
  Retained<TovalinAction*> action;  // NSMenuItem does not retain its target
  std::unique_ptr<WebView> view;
  Retained<NSMenuItem*> item;
};

}  // namespace platform
