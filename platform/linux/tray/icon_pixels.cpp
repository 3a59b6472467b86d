#include "platform/linux/tray/icon_pixels.h"

#include <QtEndian>

#include "platform/linux/images/image_impl.h"

namespace platform {

IconPixels iconPixels(const QImage& picture) {
  const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
  const qsizetype bytesOfLine = qsizetype{4} * pixels.width();
  IconPixels packed{pixels.width(), pixels.height(), QByteArray(bytesOfLine * pixels.height(), '\0')};
  for (int y = 0; y < pixels.height(); ++y)
    qToBigEndian<quint32>(pixels.constScanLine(y), pixels.width(), packed.bytes.data() + bytesOfLine * y);
  return packed;
}

QList<IconPixels> panelPixels(const Image* image) {
  QList<IconPixels> all;
  if (image == nullptr || !image->isValid()) return all;
  const Size size = image->size();
  for (const int scale : {1, 2, 4}) {
    const QSize pixels(qRound(size.width * scale), qRound(size.height * scale));
    all.append(iconPixels(image->impl().detailedTo(pixels)));
  }
  return all;
}

}  // namespace platform
