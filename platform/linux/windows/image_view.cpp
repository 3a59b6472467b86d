#include "platform/image_view.h"

#include <algorithm>
#include <utility>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "platform/image.h"
#include "platform/linux/images/image_impl.h"
#include "platform/linux/windows/accessibility.h"
#include "platform/linux/windows/focus_ring.h"
#include "platform/linux/windows/key_repeat.h"
#include "platform/linux/windows/view_impl.h"

namespace platform {
namespace {

class PictureWidget : public QWidget {
 public:
  ImageView* owner = nullptr;
  std::shared_ptr<Image> image;
  std::vector<std::pair<QRect, Qt::CursorShape>> cursorRects;

  bool isLink = false;

  void press() { clickAt(QRectF(rect()).center()); }

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* event) override { event->accept(); }
  void mouseReleaseEvent(QMouseEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override { showCursorAt(event->position().toPoint()); }
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override { keyRepeat_.noteRelease(*event); }

 private:
  void drawPicture();
  void clickAt(QPointF point) { owner->mouseUp({{point.x(), height() - point.y()}}); }
  void showCursorAt(QPoint point);

  KeyRepeat keyRepeat_;
};

void PictureWidget::paintEvent(QPaintEvent*) {
  drawPicture();
  if (hasFocus()) drawFocusRingOnPicture(*this, rect());
}

void PictureWidget::drawPicture() {
  if (image == nullptr || !image->isValid()) return;
  const Size size = image->size();
  const double shrink =
      image->impl().shrinkInto({static_cast<double>(width()), static_cast<double>(height())});
  const QSizeF shown(size.width * shrink, size.height * shrink);
  const QRectF place(QPointF((width() - shown.width()) / 2, (height() - shown.height()) / 2), shown);

  const double scale = devicePixelRatioF();
  QImage picture = image->impl().scaledTo((shown * scale).toSize());
  picture.setDevicePixelRatio(scale);
  QPainter(this).drawImage(place.topLeft(), picture);
}

void PictureWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !rect().contains(event->position().toPoint())) return;
  clickAt(event->position());
}

void PictureWidget::keyPressEvent(QKeyEvent* event) {
  if (!isLink || !activatesControl(event->key())) return QWidget::keyPressEvent(event);
  if (!keyRepeat_.isRepeated(*event)) press();
}

void PictureWidget::enterEvent(QEnterEvent* event) {
  cursorRects.clear();
  owner->resetCursorRects();
  showCursorAt(event->position().toPoint());
}

void PictureWidget::showCursorAt(QPoint point) {
  const auto found =
      std::ranges::find_if(cursorRects, [&](const auto& entry) { return entry.first.contains(point); });
  setCursor(found == cursorRects.end() ? Qt::ArrowCursor : found->second);
}

// Role and actions are computed per call: setActsAsLink may follow the creation of this interface.
class AccessiblePicture : public AccessibleLink {
 public:
  explicit AccessiblePicture(PictureWidget& picture)
      : AccessibleLink(picture, {}, [&picture] { picture.press(); }), picture_(picture) {}

  [[nodiscard]] QAccessible::Role role() const override {
    return picture_.isLink ? QAccessible::Link : QAccessible::Graphic;
  }
  [[nodiscard]] QStringList actionNames() const override {
    return picture_.isLink ? AccessibleLink::actionNames() : QStringList();
  }

 private:
  const PictureWidget& picture_;
};

QAccessibleInterface* describePicture(const QString&, QObject* object) {
  auto* picture = dynamic_cast<PictureWidget*>(object);
  return picture != nullptr ? new AccessiblePicture(*picture) : nullptr;
}

PictureWidget& pictureWidget(const ImageView& view) {
  return static_cast<PictureWidget&>(*view.impl().widget);
}

}  // namespace

ImageView::ImageView(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<PictureWidget>())) {
  QAccessible::installFactory(describePicture);  // a repeated installation is ignored
  pictureWidget(*this).owner = this;
  pictureWidget(*this).setMouseTracking(true);
}

ImageView::~ImageView() = default;

void ImageView::setImage(std::shared_ptr<Image> image) {
  pictureWidget(*this).image = std::move(image);
  pictureWidget(*this).update();
}

void ImageView::setActsAsLink(bool acts) {
  pictureWidget(*this).isLink = acts;
  pictureWidget(*this).setFocusPolicy(acts ? Qt::TabFocus : Qt::NoFocus);
}

void ImageView::mouseUp(const MouseEvent&) {}

void ImageView::resetCursorRects() {}

void ImageView::addCursorRect(Rect rect, Cursor cursor) {
  pictureWidget(*this).cursorRects.emplace_back(
      toQtRect(rect, bounds().height),
      cursor == Cursor::PointingHand ? Qt::PointingHandCursor : Qt::ArrowCursor);
}

}  // namespace platform
