#include "platform/alert.h"

#include <utility>

#include "platform/application.h"
#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/images/image_impl.h"
#include "platform/macos/windows/window_impl.h"
#include "platform/window.h"

namespace platform {
namespace {

using AlertEnd = std::function<void(int)>;

void answer(Window::Impl& window, NSAlert* alert, int code, const AlertEnd& didEnd) {
  NSWindow* sheet = [alert window];
  [window.window.get() endSheet:sheet returnCode:code];
  [sheet orderOut:nil];
  window.releaseForSheet(alert);
  if (didEnd) Application::sharedApplication().performOnMainThread([=] { didEnd(code); });
}

// Replaces the targets of the alert's buttons: NSAlert reports the answer of a sheet only through a block.
void takeButtons(Window::Impl& window, NSAlert* alert, const AlertEnd& didEnd) {
  NSArray* buttons = [alert buttons];
  for (NSUInteger i = 0; i < [buttons count]; ++i) {
    const int code = alertFirstButtonReturn + static_cast<int>(i);
    const Retained<TovalinAction*> action(makeAction([=, &window] { answer(window, alert, code, didEnd); }));
    window.retainForSheet(alert, action.get());
    auto* button = static_cast<NSButton*>([buttons objectAtIndex:i]);
    [button setTarget:action.get()];
    [button setAction:@selector(perform:)];
  }
}

}  // namespace

struct Alert::Impl {
  Retained<NSAlert*> alert{[[NSAlert alloc] init]};
};

Alert::Alert() : impl_(std::make_unique<Impl>()) {}
Alert::~Alert() = default;

void Alert::addButton(std::string_view title) {
  [impl_->alert.get() addButtonWithTitle:textOf(title)];
}

void Alert::setMessageText(std::string_view text) {
  [impl_->alert.get() setMessageText:textOf(text)];
}

void Alert::setAlertStyle(Style style) {
  static_cast<void>(style);
  [impl_->alert.get() setAlertStyle:NSAlertStyleWarning];
}

void Alert::setIcon(std::shared_ptr<Image> icon) {
  [impl_->alert.get() setIcon:icon == nullptr ? nil : icon->impl().image.get()];
}

void Alert::beginSheetModalForWindow(const std::shared_ptr<Window>& window, std::function<void(int)> didEnd) {
  if ([[impl_->alert.get() buttons] count] == 0) addButton("OK");
  NSAlert* alert = impl_->alert.get();
  [alert layout];
  takeButtons(window->impl(), alert, didEnd);
  [[alert window] setPreventsApplicationTerminationWhenModal:NO];
  [window->impl().window.get() beginSheet:[alert window] completionHandler:nil];
}

}  // namespace platform
