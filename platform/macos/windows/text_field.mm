#include "platform/text_field.h"

#include "platform/macos/foundation/text_impl.h"
#include "platform/macos/windows/view_impl.h"

namespace platform {
namespace {

constexpr double defaultFontSize = 12;

NSTextField* label(const TextField& field) {
  return static_cast<NSTextField*>(field.impl().view.get());
}

}  // namespace

TextField::TextField(Rect frame)
    : View(std::make_unique<Impl>(frame, [[NSTextField alloc] initWithFrame:nativeRect(frame)])) {
  [label(*this) setBezeled:NO];
  [label(*this) setDrawsBackground:NO];
  [label(*this) setEditable:NO];
  [label(*this) setSelectable:NO];
  setFont(Font(defaultFontSize));
}

void TextField::setAlignment(TextAlignment alignment) {
  [label(*this) setAlignment:textAlignment(alignment)];
}

void TextField::setText(std::string_view text) {
  [label(*this) setStringValue:textOf(text)];
}

void TextField::setFont(Font font) {
  [label(*this) setFont:systemFont(font)];
}

}  // namespace platform
