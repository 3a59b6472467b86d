#pragma once

#include <memory>

#include "platform/view.h"

namespace platform {

class Image;

// The shape of the pointer; PointingHand marks a link.
enum class Cursor { Arrow, PointingHand };

struct MouseEvent {
  Point locationInView;  // in the view's own coordinates
};

// A view that shows an image, centred and scaled down proportionally if it is larger than the view. Main
// thread only.
class ImageView : public View {
 public:
  explicit ImageView(Rect frame);
  ~ImageView() override;

  // nullptr shows nothing. The view keeps a reference to the image.
  void setImage(std::shared_ptr<Image> image);

  // Whether the view accepts the input focus and is exposed to assistive technology as a link. Return and
  // Space then act as a click in its centre. Off by default; must be set before the view is shown.
  void setActsAsLink(bool acts);

  // Called when the main button is pressed and released over the view. The default implementation does
  // nothing.
  virtual void mouseUp(const MouseEvent& event);

  // Called each time the pointer enters the view. An override registers its cursor rectangles with
  // addCursorRect. The default implementation does nothing.
  virtual void resetCursorRects();
  // Shows `cursor` while the pointer is in `rect`. Call it from resetCursorRects only.
  void addCursorRect(Rect rect, Cursor cursor);
};

}  // namespace platform
