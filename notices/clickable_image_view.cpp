#include "notices/clickable_image_view.h"

#include "app/globals.h"

void tovalinNSImageViewDelegate::myImageView(tovalinNSImageView&, const platform::MouseEvent&) {}

void tovalinNSImageView::resetCursorRects() {
  if (!isNetworkOnline) return;
  ImageView::resetCursorRects();
  addCursorRect(bounds(), platform::Cursor::PointingHand);
}

void tovalinNSImageView::mouseUp(const platform::MouseEvent& event) {
  if (tovalinNSImageViewDelegate* listener = delegate) listener->myImageView(*this, event);
}
