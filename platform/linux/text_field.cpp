#include "platform/text_field.h"

#include <QLabel>

#include "platform/linux/view_impl.h"

namespace platform {
namespace {

QLabel& label(const TextField& field) {
  return static_cast<QLabel&>(*field.impl().widget);
}

}  // namespace

TextField::TextField(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<QLabel>())) {
  label(*this).setTextFormat(Qt::PlainText);
  label(*this).setTextInteractionFlags(Qt::NoTextInteraction);
  setAlignment(TextAlignment::Left);
}

void TextField::setAlignment(TextAlignment alignment) {
  label(*this).setAlignment(Qt::AlignTop |
                            (alignment == TextAlignment::Center ? Qt::AlignHCenter : Qt::AlignLeft));
}

void TextField::setText(std::string_view text) {
  label(*this).setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

// By pixels, so that the text fits its frame at any resolution that the screen reports.
void TextField::setSystemFont(double size) {
  QFont font = label(*this).font();
  font.setPixelSize(qRound(size));
  label(*this).setFont(font);
}

}  // namespace platform
