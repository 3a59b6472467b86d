#include "platform/color.h"

#import <Cocoa/Cocoa.h>

#include "platform/macos/foundation/autorelease_pool.h"

namespace platform {

Color colorFromHsb(double hue, double saturation, double brightness, double alpha) {
  const AutoreleasePool pool;
  NSColor* color = [NSColor colorWithCalibratedHue:hue
                                        saturation:saturation
                                        brightness:brightness
                                             alpha:alpha];
  return {[color redComponent], [color greenComponent], [color blueComponent], [color alphaComponent]};
}

}  // namespace platform
