#include "platform/window.h"

#include <algorithm>
#include <utility>

#include "platform/macos/application/application_impl.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/windows/color_impl.h"
#include "platform/macos/windows/view_impl.h"
#include "platform/macos/windows/window_impl.h"

@interface TovalinWindow : NSWindow
@end

@implementation TovalinWindow

- (BOOL)worksWhenModal {
  return platform::Application::sharedApplication().impl().modalRuns.admits(self);
}

- (BOOL)canBecomeKeyWindow {
  return YES;
}

// AppKit sends this for Escape.
- (void)cancelOperation:(id)sender {
  [self performClose:sender];
}

@end

@interface TovalinWindowDelegate : NSObject {
  platform::Window* owner_;
}
- (id)initWithOwner:(platform::Window*)owner;
- (BOOL)windowShouldClose:(id)sender;
- (void)windowWillClose:(NSNotification*)notification;
@end

@implementation TovalinWindowDelegate

- (id)initWithOwner:(platform::Window*)owner {
  self = [super init];
  if (self != nil) owner_ = owner;
  return self;
}

- (BOOL)windowShouldClose:(id)sender {
  static_cast<void>(sender);
  return owner_->impl().mayBeClosed();
}

- (void)windowWillClose:(NSNotification*)notification {
  static_cast<void>(notification);
  owner_->impl().willBeClosed();
  owner_->impl().releaseOnceIdle();
}

@end

namespace platform {
namespace {

NSUInteger styleMask(WindowStyle style) {
  constexpr NSUInteger titled = NSWindowStyleMaskTitled;
  return style == WindowStyle::Titled ? titled : titled | NSWindowStyleMaskClosable;
}

NSWindow* makeNative(Rect contentRect, WindowStyle style) {
  NSWindow* window = [[TovalinWindow alloc]
      initWithContentRect:NSMakeRect(contentRect.x, contentRect.y, contentRect.width, contentRect.height)
                styleMask:styleMask(style)
                  backing:NSBackingStoreBuffered
                    defer:NO];
  [window setReleasedWhenClosed:NO];
  // Otherwise the window would block the end of the user's session during a modal run.
  [window setPreventsApplicationTerminationWhenModal:NO];
  return window;
}

class ContentView : public View {
 public:
  explicit ContentView(Rect frame)
      : View(std::make_unique<Impl>(frame, [[NSView alloc] initWithFrame:nativeRect(frame)])) {}
};

// Returns the appearance in which text is readable on this colour.
NSAppearance* appearanceOn(Color background) {
  const bool isLight = background.red + background.green + background.blue > 1.5;
  return [NSAppearance appearanceNamed:isLight ? NSAppearanceNameAqua : NSAppearanceNameDarkAqua];
}

}  // namespace

Window::Impl::Impl(Rect contentRect, WindowStyle ofStyle)
    : style(ofStyle),
      window(makeNative(contentRect, ofStyle)),
      content(std::make_unique<ContentView>(Rect{0, 0, contentRect.width, contentRect.height})) {
  [window.get() setContentView:content->impl().view.get()];
}

Window::Impl::~Impl() {
  [window.get() setDelegate:nil];
  [window.get() orderOut:nil];
}

bool Window::Impl::mayBeClosed() const {
  return style == WindowStyle::TitledClosable && [window.get() attachedSheet] == nil;
}

void Window::Impl::willBeClosed() {
  if (std::exchange(closed, true)) return;
  if (NSWindow* sheet = [window.get() attachedSheet]) [window.get() endSheet:sheet];
  sheetParts.clear();
  if (const auto tell = std::exchange(willClose, nullptr)) tell();
}

void Window::Impl::releaseOnceIdle() {
  const auto self = std::move(onScreen);
  Application::sharedApplication().performOnMainThread([=] { static_cast<void>(self); });
}

void Window::Impl::retainForSheet(NSAlert* alert, TovalinAction* action) {
  sheetParts.push_back({retained(alert), retained(action)});
}

// Called by an action of the alert's buttons. Autorelease keeps the alert, its buttons and the actions until
// that call returns.
void Window::Impl::releaseForSheet(NSAlert* alert) {
  [[alert retain] autorelease];
  for (const SheetPart& part : sheetParts) {
    if (part.alert.get() == alert) [[part.action.get() retain] autorelease];
  }
  std::erase_if(sheetParts, [&](const SheetPart& part) { return part.alert.get() == alert; });
}

std::shared_ptr<Window> Window::make(Rect contentRect, WindowStyle style) {
  std::shared_ptr<Window> window(new Window(contentRect, style));
  return window->impl().window.get() == nil ? nullptr : window;
}

Window::Window(Rect contentRect, WindowStyle style) : impl_(std::make_unique<Impl>(contentRect, style)) {
  impl_->delegate = Retained<NSObject*>([[TovalinWindowDelegate alloc] initWithOwner:this]);
  [impl_->window.get() setDelegate:static_cast<id>(impl_->delegate.get())];
}
Window::~Window() = default;

void Window::setTitle(std::string_view title) {
  [impl_->window.get() setTitle:textOf(title)];
}

void Window::setBackgroundColor(Color color) {
  NSWindow* window = impl_->window.get();
  [window setBackgroundColor:nativeColor(color)];
  if ([window respondsToSelector:@selector(setAppearance:)])
    [window performSelector:@selector(setAppearance:) withObject:appearanceOn(color)];
}

void Window::setHidesOnDeactivate(bool hides) {
  [impl_->window.get() setHidesOnDeactivate:hides];
}

void Window::setWillClose(std::function<void()> willClose) {
  impl_->willClose = std::move(willClose);
}

View& Window::contentView() const {
  return *impl_->content;
}

void Window::center() {
  [impl_->window.get() center];
}

void Window::makeKeyAndOrderFront() {
  if (impl_->closed) return;
  impl_->onScreen = shared_from_this();
  [impl_->window.get() makeKeyAndOrderFront:nil];
}

void Window::orderOut() {
  [impl_->window.get() orderOut:nil];
  // `self` may be the last reference, so do not use this object after it.
  const auto self = std::move(impl_->onScreen);
}

void Window::close() {
  if (impl_->closed) return;
  const auto self = shared_from_this();
  [impl_->window.get() close];
}

bool Window::isVisible() const {
  return [impl_->window.get() isVisible];
}

}  // namespace platform
