#include "tests/harness/bus_doubles/icon_pixmap.h"

#include <QByteArray>
#include <QtEndian>

namespace {

QImage imageOf(int width, int height, const QByteArray& bytes) {
  if (width <= 0 || height <= 0 || bytes.size() != qsizetype{4} * width * height) return {};
  QImage image(width, height, QImage::Format_ARGB32);
  for (int y = 0; y < height; ++y) {
    qFromBigEndian<quint32>(bytes.constData() + qsizetype{4} * width * y, width, image.scanLine(y));
  }
  return image;
}

}  // namespace

QList<QImage> imagesOf(const QVariant& pixmaps) {
  QList<QImage> images;
  const auto argument = pixmaps.value<QDBusArgument>();
  if (argument.currentSignature() != "a(iiay)") return images;
  argument.beginArray();
  while (!argument.atEnd()) {
    int width = 0;
    int height = 0;
    QByteArray bytes;
    argument.beginStructure();
    argument >> width >> height >> bytes;
    argument.endStructure();
    images.append(imageOf(width, height, bytes));
  }
  argument.endArray();
  return images;
}

QString sizeText(const QImage& image) {
  return QString::number(image.width()) + "x" + QString::number(image.height());
}
