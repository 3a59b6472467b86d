#include "platform/image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <set>

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QScreen>

#include "platform/bundle.h"
#include "platform/linux/images/cached_pixels.h"
#include "platform/linux/images/image_impl.h"
#include "platform/portable/picture_data.h"

namespace platform {
namespace {

constexpr double maxPixels = 64e6;
constexpr qsizetype bytesPerPixel = 4;
constexpr int maxDataBytes = 64 << 20;
constexpr QLatin1StringView twoPixels("@2x");
constexpr QLatin1StringView fourPixels("@4x");

// Returns the scales of all screens in ascending order; 1 if there are no screens.
std::set<double> backingScales() {
  std::set<double> scales;
  for (const QScreen* screen : QGuiApplication::screens()) scales.insert(screen->devicePixelRatio());
  return scales.empty() ? std::set{1.0} : scales;
}

QImage emptyRepresentation(Size size, double scale) {
  const double width = std::ceil(size.width * scale), height = std::ceil(size.height * scale);
  if (!(width >= 1 && height >= 1 && width * height <= maxPixels)) return {};
  const auto columns = static_cast<int>(width), rows = static_cast<int>(height);
  // All-zero pixels are transparent. calloc provides pages that the kernel zeroes on first access, so no time
  // is spent on clearing a canvas that is overwritten at once.
  auto* pixels = static_cast<uchar*>(
      std::calloc(static_cast<std::size_t>(rows), static_cast<std::size_t>(columns * bytesPerPixel)));
  if (pixels == nullptr) return {};
  return {pixels,    columns, rows, columns * bytesPerPixel, QImage::Format_ARGB32_Premultiplied,
          std::free, pixels};
}

// Returns a key that changes when the file does: path, size and modification time.
QString versionOf(const QString& path) {
  const QFileInfo file(path);
  return path + QString::asprintf(" %lld %lld", file.size(), file.lastModified().toMSecsSinceEpoch());
}

QImage decoded(const QString& path) {
  // The file name determines the format. Detection by content would load every image plugin.
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  QImageReader reader(&file, QFileInfo(path).suffix().toLatin1());
  reader.setAutoDetectImageFormat(false);
  QImage pixels = reader.read();
  pixels.setDevicePixelRatio(1);  // Qt sets it from "@2x" in the name
  return pixels;
}

// Cached, because decoding a large image takes several milliseconds.
QImage pixelsIn(const QString& path) {
  return cachedPixels(versionOf(path), [&] { return decoded(path); });
}

// Excludes vector formats, in which the size of the image does not bound the memory needed for decoding.
bool isPixelFormat(const QByteArray& format) {
  constexpr std::array formats = {"png", "jpg",  "jpeg", "gif", "bmp", "webp",
                                  "tif", "tiff", "pbm",  "pgm", "ppm"};
  return std::ranges::any_of(formats, [&](const char* known) { return format == known; });
}

QString withSuffix(const QString& path, QLatin1StringView scale) {
  const auto dot = path.lastIndexOf(QLatin1Char('.'));
  return path.left(dot) + scale + path.mid(dot);
}

QPixmap measuring(Size size, const QImage& representation) {
  QPixmap pixmap = QPixmap::fromImage(representation);
  pixmap.setDevicePixelRatio(representation.width() / size.width);
  return pixmap;
}

}  // namespace

double backingScale() {
  return qGuiApp == nullptr ? 1.0 : qGuiApp->devicePixelRatio();
}

double Image::Impl::shrinkInto(Size bounds) const {
  return std::min({1.0, bounds.width / size.width, bounds.height / size.height});
}

QImage Image::Impl::scaledTo(QSize pixels) const {
  return representationFor(pixels.width()).scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

// Not cached: the panel icon keeps the result.
QImage Image::Impl::detailedTo(QSize pixels) const {
  QImage best = representationFor(pixels.width());
  for (const QLatin1StringView scale : {twoPixels, fourPixels}) {
    if (file.isEmpty() || best.width() >= pixels.width()) break;
    QImage finer = decoded(withSuffix(file, scale));
    if (finer.width() > best.width()) best = std::move(finer);
  }
  return best.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

QPixmap Image::Impl::pixmap() const {
  return representations.empty() ? QPixmap() : measuring(size, representations.back());
}

std::vector<QPixmap> Image::Impl::pixmaps() const {
  std::vector<QPixmap> all;
  for (const QImage& representation : representations) all.push_back(measuring(size, representation));
  return all;
}

Image::Image() : impl_(std::make_unique<Impl>()) {}

Image::Image(Size size) : Image() {
  impl_->size = impl_->naturalSize = size;
  for (const double scale : backingScales()) {
    QImage representation = emptyRepresentation(size, scale);
    if (!representation.isNull()) impl_->representations.push_back(std::move(representation));
  }
}

Image::~Image() = default;

bool Image::isValid() const {
  return !impl_->representations.empty();
}

Size Image::size() const {
  return impl_->size;
}

void Image::setSize(Size size) {
  impl_->size = size;
}

void Image::setScalesWhenResized(bool scales) {
  impl_->scalesWhenResized = scales;
}

Size Image::pixelSize() const {
  if (!isValid()) return {};
  const QSize pixels = impl_->representations.back().size();
  return {static_cast<double>(pixels.width()), static_cast<double>(pixels.height())};
}

std::shared_ptr<Image> imageNamed(std::string_view name) {
  const auto bundle = Bundle::mainBundle();
  if (!bundle) return nullptr;
  const QString path = QString::fromStdString(bundle->pathForResource(name));
  QImage plain = pixelsIn(path), fine;
  // Decoding the 2x representation takes four times as long, so skip it if no screen shows it.
  if (backingScale() > 1) fine = pixelsIn(withSuffix(path, twoPixels));
  if (plain.isNull()) return nullptr;

  std::shared_ptr<Image> image(new Image);
  image->impl_->name = versionOf(path);
  image->impl_->file = path;
  image->impl_->size =
      image->impl_->naturalSize = {static_cast<double>(plain.width()), static_cast<double>(plain.height())};
  image->impl_->representations.push_back(std::move(plain));
  if (!fine.isNull()) image->impl_->representations.push_back(std::move(fine));
  return image;
}

std::shared_ptr<Image> imageWithData(std::string_view bytes) {
  const auto bounded = boundedPictureData(bytes);
  if (!bounded) return nullptr;
  QByteArray data = QByteArray::fromRawData(bounded->data(), static_cast<qsizetype>(bounded->size()));
  QBuffer buffer(&data);
  QImageReader reader(&buffer);
  if (!isPixelFormat(reader.format())) return nullptr;
  // Checks the size in the header before decoding. The allocation limit covers formats without one.
  const QSize size = reader.size();
  if (4.0 * size.width() * size.height() > maxDataBytes) return nullptr;
  QImageReader::setAllocationLimit(maxDataBytes >> 20);
  QImage pixels = reader.read();
  if (pixels.isNull() || pixels.sizeInBytes() > maxDataBytes) return nullptr;
  pixels.setDevicePixelRatio(1);

  std::shared_ptr<Image> image(new Image);
  image->impl_->size =
      image->impl_->naturalSize = {static_cast<double>(pixels.width()), static_cast<double>(pixels.height())};
  image->impl_->representations.push_back(std::move(pixels));
  return image;
}

}  // namespace platform
