#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/geometry.h"

namespace platform {

// How pixels are found for another size: between the nearest ones (Low), or as the mean of all that each new
// pixel covers (High).
enum class ImageInterpolation { Low, High };
// Whether what is drawn takes the place of what was there, transparent parts too, or lies upon it.
enum class CompositingOperation { Copy, SourceOver };

// A picture with a size in points. Its pixels are kept apart from that: a picture of 20 by 20 points made on
// a screen with two device pixels to the point holds 40 by 40 pixels. Main thread only.
class Image {
 public:
  // An empty picture of this size, to be drawn into. Not valid when a side is not positive or the whole is
  // beyond 64 million pixels.
  explicit Image(Size size);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Whether there is a picture at all.
  [[nodiscard]] bool isValid() const;

  [[nodiscard]] Size size() const;
  void setSize(Size size);
  // Whether a change of size stretches what is drawn (true), or only the frame around it (false, as at
  // first).
  void setScalesWhenResized(bool scales);

  // The width and height in pixels of the most detailed form that it holds.
  [[nodiscard]] Size pixelSize() const;

  struct Impl;  // for the bodies of platform/ alone
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  friend std::shared_ptr<Image> imageNamed(std::string_view name);
  friend std::shared_ptr<Image> imageWithData(std::string_view bytes);
  Image();
  std::unique_ptr<Impl> impl_;
};

// A fresh image of the file `name` among the program's resources, in the format that its ending names; on
// screens of more than one pixel to the point with its form for those ("NAME@2x.png"), where there is one.
// Nothing when there is no such file or it is no picture. Main thread.
[[nodiscard]] std::shared_ptr<Image> imageNamed(std::string_view name);

// A fresh image of picture data in any format of pixels that the desktop reads, one point to the pixel.
// Nothing when it is no such picture, or one whose pixels would take more than 64 MB. Main thread.
[[nodiscard]] std::shared_ptr<Image> imageWithData(std::string_view bytes);

// Drawing into an image, for as long as this object lives; the image must outlive it. Main thread.
class ImageFocus {
 public:
  explicit ImageFocus(Image& target);
  ~ImageFocus();
  ImageFocus(const ImageFocus&) = delete;
  ImageFocus& operator=(const ImageFocus&) = delete;

  // Low at first.
  void setImageInterpolation(ImageInterpolation interpolation);
  // Draws the part `from` of `source` (in the source's points) with its lower left corner at `at`; `fraction`
  // is the opacity from 0 to 1.
  void draw(const Image& source, Point at, Rect from, CompositingOperation operation, double fraction);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
