#pragma once

#include <atomic>

#include "platform/image_view.h"

class tovalinNSImageView;

// Who wants to hear of clicks on a tovalinNSImageView. Not overriding the method is not wanting to.
class tovalinNSImageViewDelegate {
 public:
  virtual void myImageView(tovalinNSImageView& view, const platform::MouseEvent& mouseUp);

 protected:
  ~tovalinNSImageViewDelegate() = default;
};

// An image view that hands its clicks to a delegate and, while the network is there, shows the pointing hand
// over the whole of itself. Main thread.
class tovalinNSImageView : public platform::ImageView {
 public:
  using ImageView::ImageView;

  void resetCursorRects() override;
  void mouseUp(const platform::MouseEvent& event) override;

  // Not owned: the delegate outlives the view or is taken out before. nullptr for none.
  std::atomic<tovalinNSImageViewDelegate*> delegate = nullptr;
};
