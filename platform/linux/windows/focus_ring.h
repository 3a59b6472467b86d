#pragma once

class QRect;
class QWidget;

namespace platform {

// Width of the ring, and its distance from a button's bezel.
inline constexpr int focusRingWidth = 2, focusRingGap = 1;

// Draws the focus ring just inside `outer`, in the palette's highlight colour, darkened or lightened until it
// has a contrast of 3:1 to the window's background. Call it from paintEvent only. Main thread only.
void drawFocusRing(QWidget& widget, const QRect& outer);

// Draws a dark ring just inside `outer` and a white one inside it: one of them has a contrast of 3:1 to any
// colour of a picture. Call it from paintEvent only. Main thread only.
void drawFocusRingOnPicture(QWidget& widget, const QRect& outer);

}  // namespace platform
