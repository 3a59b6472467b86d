#include "platform/image_view.h"

#include <utility>

#include "platform/image.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/images/image_impl.h"
#include "platform/macos/windows/view_impl.h"

// Forwards clicks and resetCursorRects to an ImageView.
@interface TovalinImageView : NSImageView {
  platform::ImageView* owner_;  // nullptr after the owner's destruction
  bool actsAsLink_;
}
- (void)setOwner:(platform::ImageView*)owner;
- (void)setActsAsLink:(bool)acts;
@end

@implementation TovalinImageView

- (void)setOwner:(platform::ImageView*)owner {
  owner_ = owner;
}

- (void)setActsAsLink:(bool)acts {
  actsAsLink_ = acts;
}

- (NSString*)accessibilityRole {
  return actsAsLink_ ? NSAccessibilityLinkRole : NSAccessibilityImageRole;
}

// Overridden to accept the press, so that the release is delivered to this view too.
- (void)mouseDown:(NSEvent*)event {
  static_cast<void>(event);
}

- (void)mouseUp:(NSEvent*)event {
  const NSPoint point = [self convertPoint:[event locationInWindow] fromView:nil];
  if (owner_ != nullptr && NSPointInRect(point, [self bounds])) owner_->mouseUp({{point.x, point.y}});
}

- (BOOL)acceptsFirstResponder {
  return actsAsLink_;
}

- (void)keyDown:(NSEvent*)event {
  const std::string characters = platform::utf8Of([event characters]);
  if (!actsAsLink_ || owner_ == nullptr || (characters != " " && characters != "\r"))
    return [super keyDown:event];
  const NSRect bounds = [self bounds];
  if (![event isARepeat]) owner_->mouseUp({{bounds.size.width / 2, bounds.size.height / 2}});
}

- (void)resetCursorRects {
  if (owner_ != nullptr) owner_->resetCursorRects();
}

@end

namespace platform {
namespace {

TovalinImageView* pictureView(const ImageView& view) {
  return static_cast<TovalinImageView*>(view.impl().view.get());
}

}  // namespace

ImageView::ImageView(Rect frame)
    : View(std::make_unique<Impl>(frame, [[TovalinImageView alloc] initWithFrame:nativeRect(frame)])) {
  [pictureView(*this) setImageScaling:NSImageScaleProportionallyDown];
  [pictureView(*this) setOwner:this];
}

ImageView::~ImageView() {
  [pictureView(*this) setOwner:nullptr];
}

void ImageView::setImage(std::shared_ptr<Image> image) {
  [pictureView(*this) setImage:image == nullptr ? nil : image->impl().image.get()];
}

void ImageView::setActsAsLink(bool acts) {
  [pictureView(*this) setActsAsLink:acts];
}

void ImageView::mouseUp(const MouseEvent&) {}

void ImageView::resetCursorRects() {}

void ImageView::addCursorRect(Rect rect, Cursor cursor) {
  [pictureView(*this)
      addCursorRect:nativeRect(rect)
             cursor:cursor == Cursor::PointingHand ? [NSCursor pointingHandCursor] : [NSCursor arrowCursor]];
}

}  // namespace platform
