#include "platform/text_field.h"

#include <QLabel>

#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/view_impl.h"

namespace platform {
namespace {

constexpr double defaultFontSize = 12;

QLabel& label(const TextField& field) {
  return static_cast<QLabel&>(*field.impl().widget);
}

}  // namespace

TextField::TextField(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<QLabel>())) {
  label(*this).setTextFormat(Qt::PlainText);
  label(*this).setTextInteractionFlags(Qt::NoTextInteraction);
  setAlignment(TextAlignment::Left);
  setFont(Font(defaultFontSize));
}

void TextField::setAlignment(TextAlignment alignment) {
  label(*this).setAlignment(alignmentFromTop(alignment));
}

void TextField::setText(std::string_view text) {
  label(*this).setText(textOf(text));
}

void TextField::setFont(Font font) {
  label(*this).setFont(systemFont(label(*this).font(), font));
}

}  // namespace platform
