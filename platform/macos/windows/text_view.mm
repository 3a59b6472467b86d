#include "platform/text_view.h"

#include "platform/macos/foundation/retained.h"
#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/system/bracket_escapes.h"
#include "platform/macos/windows/color_impl.h"
#include "platform/macos/windows/view_impl.h"

namespace platform {
namespace {

NSTextView* textView(const TextView& view) {
  return static_cast<NSTextView*>(static_cast<id>(view.impl().view.get()));
}

NSRange fullRange(NSTextView* view) {
  return NSMakeRange(0, static_cast<NSUInteger>([[view textStorage] length]));
}

// Sets no font attribute, so the text appears in the default font of the text system.
NSDictionary* nativeAttributes(const TextAttributes& attributes) {
  NSMutableDictionary* native = [NSMutableDictionary dictionary];
  if (attributes.pointingHandCursor)
    [native setObject:[NSCursor pointingHandCursor] forKey:NSCursorAttributeName];
  if (attributes.foregroundColor)
    [native setObject:nativeColor(*attributes.foregroundColor) forKey:NSForegroundColorAttributeName];
  if (!attributes.link.empty())
    [native setObject:textOf(withEscapedBrackets(attributes.link)) forKey:NSLinkAttributeName];
  if (attributes.underline)
    [native setObject:[NSNumber numberWithInt:1] forKey:NSUnderlineStyleAttributeName];
  return native;
}

}  // namespace

TextView::TextView(Rect frame)
    : View(std::make_unique<Impl>(frame, [[NSTextView alloc] initWithFrame:nativeRect(frame)])) {
  setEditable(false);
}

void TextView::setString(std::string_view text) {
  [textView(*this) setString:textOf(text)];
}

void TextView::setAttributedString(std::string_view text, const TextAttributes& attributes) {
  const Retained<NSAttributedString*> shown(
      [[NSAttributedString alloc] initWithString:textOf(text) attributes:nativeAttributes(attributes)]);
  [[textView(*this) textStorage] setAttributedString:shown.get()];
}

void TextView::setFont(Font font) {
  [textView(*this) setFont:systemFont(font)];
}

void TextView::setAlignment(TextAlignment alignment) {
  [textView(*this) setAlignment:textAlignment(alignment)];
}

void TextView::setDrawsBackground(bool draws) {
  [textView(*this) setDrawsBackground:draws];
}

void TextView::setEditable(bool editable) {
  static_cast<void>(editable);
  [textView(*this) setEditable:NO];
}

void TextView::setSelectable(bool selectable) {
  [textView(*this) setSelectable:selectable];
}

void TextView::setTruncatesTail(bool truncates) {
  if (!truncates) return;
  const Retained<NSMutableParagraphStyle*> style([[NSParagraphStyle defaultParagraphStyle] mutableCopy]);
  [style.get() setLineBreakMode:NSLineBreakByTruncatingTail];
  [[textView(*this) textStorage] addAttribute:NSParagraphStyleAttributeName
                                        value:style.get()
                                        range:fullRange(textView(*this))];
}

}  // namespace platform
