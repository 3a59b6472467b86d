#include "platform/color.h"

#include <QColor>

namespace platform {

Color colorFromHsb(double hue, double saturation, double brightness, double alpha) {
  const QColor color = QColor::fromHsvF(static_cast<float>(hue), static_cast<float>(saturation),
                                        static_cast<float>(brightness), static_cast<float>(alpha));
  return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

}  // namespace platform
