#pragma once

class QWidget;

namespace platform {

// What a window shows between its being mapped and the toolkit's first painting of it. The program may be
// busy for seconds then, and a window without a background of its own would be black.
//
// The display gets the picture as the window's background and needs the program no more. Where it takes no
// such picture (another kind of display, another depth of colour) nothing happens. Main thread.
class FirstPicture {
 public:
  // Hands the display the widget as it looks now. The widget is a window that has been shown and not yet
  // painted, whether or not it has been mapped by now.
  void give(QWidget& widget);
  // Takes it back once the widget has been painted: what is uncovered later must not show the old picture.
  void takeBack(const QWidget& widget);

 private:
  bool given_ = false;
};

}  // namespace platform
