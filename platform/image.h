#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/geometry.h"

namespace platform {

// How pixels are resampled: the nearest pixel (Low), or the mean of all pixels that a new one covers (High).
enum class ImageInterpolation { Low, High };
// Whether drawing replaces the destination, including where the source is transparent (Copy), or is blended
// over it (SourceOver).
enum class CompositingOperation { Copy, SourceOver };

// A picture with a size in points, which is independent of its pixel count: an image of 20 by 20 points made
// on a screen with two device pixels per point holds 40 by 40 pixels. Main thread only.
class Image {
 public:
  // Makes a transparent image of this size to be drawn into. The image is invalid if a side is not positive
  // or if it would have more than 64 million pixels.
  explicit Image(Size size);
  ~Image();
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // Returns whether the image has pixels.
  [[nodiscard]] bool isValid() const;

  [[nodiscard]] Size size() const;
  void setSize(Size size);
  // Whether a change of size stretches the contents (true) or only changes the frame around them (false, the
  // default). No effect on macOS, where an image always scales its contents.
  void setScalesWhenResized(bool scales);

  // Returns the width and height in pixels of the largest bitmap representation.
  [[nodiscard]] Size pixelSize() const;

  struct Impl;  // for implementations in platform/ only
  [[nodiscard]] Impl& impl() const { return *impl_; }

 private:
  friend std::shared_ptr<Image> imageNamed(std::string_view name);
  friend std::shared_ptr<Image> imageWithData(std::string_view bytes);
  Image();
  std::unique_ptr<Impl> impl_;
};

// Loads the file `name` from the program's resources into a new image, in the format of its suffix. On
// screens with more than one pixel per point, also loads the 2x representation "NAME@2x.png" if it exists. A
// panel's icon may also use "NAME@4x.png". Returns nullptr if the file does not exist or cannot be decoded.
// Main thread only.
[[nodiscard]] std::shared_ptr<Image> imageNamed(std::string_view name);

// Decodes picture data in any pixel format that the desktop supports into a new image, one point per pixel.
// Returns nullptr if the data cannot be decoded or if its pixels would take more than 64 MB. Main thread
// only.
[[nodiscard]] std::shared_ptr<Image> imageWithData(std::string_view bytes);

// Draws into an image until destroyed. The image must outlive this object. Main thread only.
class ImageFocus {
 public:
  explicit ImageFocus(Image& target);
  ~ImageFocus();
  ImageFocus(const ImageFocus&) = delete;
  ImageFocus& operator=(const ImageFocus&) = delete;

  // The default is Low.
  void setImageInterpolation(ImageInterpolation interpolation);
  // Draws the part `from` of `source` (in the source's points) with its lower left corner at `at`. `fraction`
  // is the opacity from 0 to 1.
  void draw(const Image& source, Point at, Rect from, CompositingOperation operation, double fraction);

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform
