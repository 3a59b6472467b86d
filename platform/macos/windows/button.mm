#include "platform/button.h"

#include <utility>

#include "platform/macos/foundation/action.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/windows/view_impl.h"

// Owns its action, because NSControl does not retain its target.
@interface TovalinButton : NSButton {
  TovalinAction* action_;
}
- (void)takeAction:(TovalinAction*)action;
@end

@implementation TovalinButton

- (void)dealloc {
  [action_ release];
  [super dealloc];
}

- (void)takeAction:(TovalinAction*)action {
  [action_ autorelease];
  action_ = action;
  [self setTarget:action];
  [self setAction:@selector(perform:)];
}

@end

namespace platform {
namespace {

constexpr double titleSize = 13;

TovalinButton* pushButton(const Button& button) {
  return static_cast<TovalinButton*>(button.impl().view.get());
}

}  // namespace

Button::Button(Rect frame)
    : View(std::make_unique<Impl>(frame, [[TovalinButton alloc] initWithFrame:nativeRect(frame)])) {
  [pushButton(*this) setButtonType:NSButtonTypeMomentaryPushIn];
  [pushButton(*this) setFont:systemFont(Font(titleSize))];
  setBezelStyle(BezelStyle::Rounded);
}

void Button::setTitle(std::string_view title) {
  [pushButton(*this) setTitle:textOf(title)];
}

void Button::setEnabled(bool enabled) {
  [pushButton(*this) setEnabled:enabled];
}

bool Button::isEnabled() const {
  return [pushButton(*this) isEnabled];
}

void Button::setBezelStyle(BezelStyle style) {
  static_cast<void>(style);
  [pushButton(*this) setBezelStyle:NSBezelStyleRounded];
}

void Button::setAction(std::function<void()> action) {
  [pushButton(*this) takeAction:makeAction(std::move(action))];
}

}  // namespace platform
