#pragma once

#include <atomic>

#include "platform/image_view.h"

class tovalinNSImageView;

// Receives the clicks on a tovalinNSImageView. The default implementation ignores them.
class tovalinNSImageViewDelegate {
 public:
  virtual void myImageView(tovalinNSImageView& view, const platform::MouseEvent& mouseUp);

 protected:
  ~tovalinNSImageViewDelegate() = default;
};

// An image view that passes its clicks to a delegate and shows the pointing-hand cursor over its whole area
// while the network is available. Main thread only.
class tovalinNSImageView : public platform::ImageView {
 public:
  using ImageView::ImageView;

  void resetCursorRects() override;
  void mouseUp(const platform::MouseEvent& event) override;

  // Not owned. The delegate must outlive the view or be reset before. nullptr for none.
  std::atomic<tovalinNSImageViewDelegate*> delegate = nullptr;
};
