// Measures imageResize() against QImage::scaled() on the same pixels.

#include <malloc.h>

#include <QImage>

#include "notices/image_resize.h"
#include "platform/image.h"
#include "platform/linux/images/image_impl.h"
#include "tests/bench/pairs.h"

namespace {

constexpr int side = 512;

// Uses the format of decoded picture files.
QImage picture() {
  QImage pixels(side, side, QImage::Format_ARGB32);
  for (int y = 0; y < side; ++y)
    for (int x = 0; x < side; ++x)
      pixels.setPixelColor(x, y, QColor(x / 2, y / 2, (x ^ y) & 255, 255 - x / 4));
  return pixels;
}

}  // namespace

int main() {
  // The agent's malloc settings: large blocks are mapped and unmapped.
  ::mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  const QImage pixels = picture();
  platform::Image source({side, side});
  source.impl().representations = {pixels};
  for (const QSize size : {QSize(20, 20), QSize(420, 420), QSize(420, 40)}) {
    const auto ours = [&] { static_cast<void>(imageResize(&source, size.width(), size.height())); };
    const auto reference = [&] {
      static_cast<void>(pixels.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    };
    bench::print(bench::timePairs(
        "imageResize, 512x512 to " + std::to_string(size.width()) + "x" + std::to_string(size.height()), ours,
        reference));
  }
}
