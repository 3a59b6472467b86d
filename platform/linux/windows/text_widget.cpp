#include "platform/linux/windows/text_widget.h"

#include <utility>

#include <QKeyEvent>
#include <QPainter>

#include "platform/linux/windows/accessibility.h"
#include "platform/linux/windows/color_impl.h"
#include "platform/linux/windows/focus_ring.h"
#include "platform/workspace.h"

namespace platform {
namespace {

// Left and top: the distance of an attributed text from its frame, in which the focus ring is drawn. Right:
// the distance of an ellipsis.
constexpr int linkMargin = 4, linkMarginTop = 2, tailMargin = 12;

QAccessibleInterface* describeLink(const QString&, QObject* object) {
  auto* text = dynamic_cast<TextWidget*>(object);
  if (text == nullptr || !text->isLink()) return nullptr;
  return new AccessibleLink(*text, text->text(), [text] { text->openLink(); });
}

}  // namespace

TextWidget::TextWidget() {
  QAccessible::installFactory(describeLink);  // a repeated installation is ignored
  setTextFormat(Qt::PlainText);
  setWordWrap(true);
  setMouseTracking(true);
  updateInteraction();
}

void TextWidget::showPlain(const QString& text) {
  attributes_.reset();
  setText(text);
  updateInteraction();
}

void TextWidget::showAttributed(const QString& text, TextAttributes attributes) {
  attributes_ = std::move(attributes);
  setText(text);
  updateInteraction();
}

void TextWidget::setSelectable(bool selectable) {
  selectable_ = selectable;
  updateInteraction();
}

void TextWidget::setTruncatesTail(bool truncates) {
  truncates_ = truncates;
  update();
}

void TextWidget::updateInteraction() {
  const bool selects = selectable_ && !attributes_;
  setTextInteractionFlags(selects ? Qt::TextSelectableByMouse : Qt::NoTextInteraction);
  if (!selects) setFocusPolicy(isLink() ? Qt::StrongFocus : Qt::NoFocus);
  unsetCursor();
  resizeToText();
}

void TextWidget::resizeToText() {
  if (attributes_ && truncates_) return;
  if (const int needed = heightForWidth(width()); needed > height()) resize(width(), needed);
}

void TextWidget::openLink() const {
  if (isLink()) Workspace::sharedWorkspace().openURL(attributes_->link);
}

int TextWidget::layoutFlags() const {
  return static_cast<int>(alignment()) | (truncates_ ? Qt::TextSingleLine : Qt::TextWordWrap);
}

QRect TextWidget::lineArea() const {
  return rect().adjusted(linkMargin, linkMarginTop, -tailMargin, 0);
}

QString TextWidget::shownText() const {
  if (!truncates_) return text();
  return fontMetrics().elidedText(text().simplified(), Qt::ElideRight, lineArea().width());
}

QRect TextWidget::textArea() const {
  return fontMetrics().boundingRect(lineArea(), layoutFlags(), shownText()).intersected(rect());
}

// A text with the pointing hand is shown as a link, in the palette's colour for links, which is readable on
// the window's background.
QColor TextWidget::textColor() const {
  if (attributes_->pointingHandCursor) return palette().color(QPalette::Link);
  return attributes_->foregroundColor ? qtColor(*attributes_->foregroundColor)
                                      : palette().color(foregroundRole());
}

void TextWidget::paintEvent(QPaintEvent* event) {
  if (!attributes_) return QLabel::paintEvent(event);
  QPainter painter(this);
  QFont underlined = font();
  underlined.setUnderline(attributes_->underline);
  painter.setFont(underlined);
  painter.setPen(textColor());
  painter.drawText(lineArea(), layoutFlags(), shownText());
  painter.end();
  if (!hasFocus()) return;
  const QMargins margins(linkMargin, linkMarginTop, linkMargin, focusRingWidth);
  drawFocusRing(*this, textArea().marginsAdded(margins).intersected(rect()));
}

void TextWidget::resizeEvent(QResizeEvent* event) {
  QLabel::resizeEvent(event);
  resizeToText();
}

void TextWidget::mousePressEvent(QMouseEvent* event) {
  if (!isLink()) return QLabel::mousePressEvent(event);
  pressed_ = event->button() == Qt::LeftButton && textArea().contains(event->position().toPoint());
}

void TextWidget::mouseMoveEvent(QMouseEvent* event) {
  if (!attributes_) return QLabel::mouseMoveEvent(event);
  const bool over = textArea().contains(event->position().toPoint());
  setCursor(over && attributes_->pointingHandCursor ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

void TextWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!isLink()) return QLabel::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton) return;
  if (std::exchange(pressed_, false) && textArea().contains(event->position().toPoint())) openLink();
}

void TextWidget::keyPressEvent(QKeyEvent* event) {
  if (!isLink() || !activatesControl(event->key())) return QLabel::keyPressEvent(event);
  if (!keyRepeat_.isRepeated(*event)) openLink();
}

void TextWidget::keyReleaseEvent(QKeyEvent* event) {
  keyRepeat_.noteRelease(*event);
  QLabel::keyReleaseEvent(event);
}

}  // namespace platform
