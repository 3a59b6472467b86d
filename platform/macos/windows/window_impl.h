#pragma once

#import <Cocoa/Cocoa.h>

#include <functional>
#include <memory>
#include <vector>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/retained.h"
#include "platform/view.h"
#include "platform/window.h"

namespace platform {

struct Window::Impl {
  Impl(Rect contentRect, WindowStyle ofStyle);
  ~Impl();

  // Returns whether the user may close the window: its style has a close control and it has no sheet.
  [[nodiscard]] bool mayBeClosed() const;
  // Closes the window permanently: ends its sheet and calls the will-close handler. No-op when repeated.
  void willBeClosed();
  // Drops the self-reference `onScreen` from the run loop.
  void releaseOnceIdle();
  // Retains an alert and the action of one of its buttons until releaseForSheet or the close of the window.
  void retainForSheet(NSAlert* alert, TovalinAction* action);
  void releaseForSheet(NSAlert* alert);

  WindowStyle style;
  Retained<NSWindow*> window;
  Retained<NSObject*> delegate;  // NSWindow does not retain its delegate
  std::unique_ptr<View> content;
  std::shared_ptr<Window> onScreen;  // self-reference while shown or hidden by inactivity
  std::function<void()> willClose;
  bool closed = false;

  struct SheetPart {
    Retained<NSAlert*> alert;
    Retained<TovalinAction*> action;  // NSButton does not retain its target
  };
  std::vector<SheetPart> sheetParts;
};

}  // namespace platform
