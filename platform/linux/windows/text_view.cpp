#include "platform/text_view.h"

#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/text_widget.h"
#include "platform/linux/windows/view_impl.h"

namespace platform {
namespace {

constexpr double textSystemFontSize = 12;

TextWidget& textWidget(const TextView& view) {
  return static_cast<TextWidget&>(*view.impl().widget);
}

QFont textSystemFont() {
  return systemFont(QFont(), textSystemFontSize);
}

}  // namespace

TextView::TextView(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<TextWidget>())) {
  textWidget(*this).setFont(textSystemFont());
  setAlignment(TextAlignment::Left);
  setDrawsBackground(true);
}

void TextView::setString(std::string_view text) {
  textWidget(*this).showPlain(textOf(text));
}

void TextView::setAttributedString(std::string_view text, const TextAttributes& attributes) {
  textWidget(*this).setFont(textSystemFont());
  textWidget(*this).showAttributed(textOf(text), attributes);
}

void TextView::setFont(Font font) {
  textWidget(*this).setFont(systemFont(QFont(), font));
  textWidget(*this).resizeToText();
}

void TextView::setAlignment(TextAlignment alignment) {
  textWidget(*this).setAlignment(alignmentFromTop(alignment));
}

void TextView::setDrawsBackground(bool draws) {
  textWidget(*this).setBackgroundRole(draws ? QPalette::Base : QPalette::NoRole);
  textWidget(*this).setAutoFillBackground(draws);
}

void TextView::setEditable(bool) {}

void TextView::setSelectable(bool selectable) {
  textWidget(*this).setSelectable(selectable);
}

void TextView::setTruncatesTail(bool truncates) {
  textWidget(*this).setTruncatesTail(truncates);
}

}  // namespace platform
