#pragma once

#include <memory>

namespace platform {
class Image;
}

// Makes a new image of width by height points in which the whole of `image` is drawn, scaled to fill it. The
// source is left with that size too, and with scalesWhenResized set. nullptr, and "Invalid Image" on the
// console log, when there is no source, or no picture in it (its size then stays). The same is said of a new
// image that is not valid, as one of an impossible size or without memory. Main thread.
[[nodiscard]] std::shared_ptr<platform::Image> imageResize(platform::Image* image, double width,
                                                           double height);
