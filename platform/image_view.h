#pragma once

#include <memory>

#include "platform/view.h"

namespace platform {

class Image;

// What the pointer looks like; the hand tells of a link.
enum class Cursor { Arrow, PointingHand };

struct MouseEvent {
  Point locationInView;  // in the view's own points
};

// A view that shows a picture, centred, scaled down in proportion where it is too large. Main thread only.
class ImageView : public View {
 public:
  explicit ImageView(Rect frame);
  ~ImageView() override;

  // nullptr shows nothing. The view keeps the image.
  void setImage(std::shared_ptr<Image> image);

  // Whether the keyboard reaches the view, where Return and Space are a click in its middle, and assistive
  // programs are told of a link. Not at first; to be set before the view shows.
  void setActsAsLink(bool acts);

  // The main button was released over the view after it was pressed there. Does nothing
  // here.
  virtual void mouseUp(const MouseEvent& event);

  // Asked each time the pointer comes into the view: it then tells its cursor rectangles with addCursorRect.
  // None here.
  virtual void resetCursorRects();
  // Shows `cursor` while the pointer is in `rect`. To be called from resetCursorRects.
  void addCursorRect(Rect rect, Cursor cursor);
};

}  // namespace platform
