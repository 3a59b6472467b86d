#pragma once

#include <memory>

namespace platform {
class Image;
}

// Returns a new image of width by height points with the whole of `image` scaled to fill it. Sets the size
// and scalesWhenResized of the source. Returns nullptr and writes "Invalid Image" to the console log if
// `image` is nullptr or invalid; its size is then unchanged. Writes the same line if the new image is
// invalid, because of its size or when out of memory. Main thread only.
[[nodiscard]] std::shared_ptr<platform::Image> imageResize(platform::Image* image, double width,
                                                           double height);
