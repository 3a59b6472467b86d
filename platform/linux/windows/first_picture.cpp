#include "platform/linux/windows/first_picture.h"

#include <xcb/xcb.h>

#include <utility>

#include <QPixmap>
#include <QWidget>
#include <QtEndian>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

bool sharesByteOrder(const xcb_setup_t& setup) {
  const bool isLittleEndian = setup.image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
  return isLittleEndian == (Q_BYTE_ORDER == Q_LITTLE_ENDIAN);
}

// Returns whether the server's images of this depth have the row layout of QImage, which pads rows to 32
// bits.
bool hasRowsLike(QImage::Format format, std::uint8_t depth, const xcb_setup_t& setup) {
  const auto bits = static_cast<std::uint8_t>(QImage::toPixelFormat(format).bitsPerPixel());
  for (auto it = xcb_setup_pixmap_formats_iterator(&setup); it.rem > 0; xcb_format_next(&it)) {
    if (it.data->depth == depth) return it.data->bits_per_pixel == bits && it.data->scanline_pad == 32;
  }
  return false;
}

std::optional<ColorLayout> layoutOf(xcb_visualid_t visual, std::uint8_t depth) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(xConnection()));
  for (auto depths = xcb_screen_allowed_depths_iterator(screens.data); depths.rem > 0;
       xcb_depth_next(&depths)) {
    for (auto it = xcb_depth_visuals_iterator(depths.data); it.rem > 0; xcb_visualtype_next(&it)) {
      if (it.data->visual_id == visual)
        return ColorLayout{depth, it.data->red_mask, it.data->green_mask, it.data->blue_mask};
    }
  }
  return std::nullopt;
}

struct Target {
  xcb_window_t window = XCB_WINDOW_NONE;
  std::uint8_t depth = 0;
  QImage::Format format = QImage::Format_Invalid;
};

// Makes two round trips to the server.
std::optional<Target> targetIn(xcb_window_t window) {
  xcb_connection_t* const x = xConnection();
  const auto geometryCookie = xcb_get_geometry(x, window);
  const auto attributesCookie = xcb_get_window_attributes(x, window);
  const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x, geometryCookie, nullptr));
  const XReply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x, attributesCookie, nullptr));
  if (!geometry || !attributes || !sharesByteOrder(*xcb_get_setup(x))) return std::nullopt;
  const auto layout = layoutOf(attributes->visual, geometry->depth);
  const auto format = layout ? pictureFormat(*layout) : std::nullopt;
  if (!format || !hasRowsLike(*format, geometry->depth, *xcb_get_setup(x))) return std::nullopt;
  return Target{window, geometry->depth, *format};
}

bool fitsOneRequest(const QImage& picture) {
  const std::uint64_t longest = std::uint64_t{xcb_get_maximum_request_length(xConnection())} * 4;
  return static_cast<std::uint64_t>(picture.sizeInBytes()) + sizeof(xcb_put_image_request_t) + 4 <= longest;
}

void setBackPixmap(xcb_window_t window, xcb_pixmap_t pixmap) {
  xcb_change_window_attributes(xConnection(), window, XCB_CW_BACK_PIXMAP, &pixmap);
}

void upload(const QImage& picture, std::uint8_t depth, xcb_pixmap_t pixmap) {
  xcb_connection_t* const x = xConnection();
  const xcb_gcontext_t context = xcb_generate_id(x);
  xcb_create_gc(x, context, pixmap, 0, nullptr);
  xcb_put_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, static_cast<std::uint16_t>(picture.width()),
                static_cast<std::uint16_t>(picture.height()), 0, 0, 0, depth,
                static_cast<std::uint32_t>(picture.sizeInBytes()), picture.constBits());
  xcb_free_gc(x, context);
}

}  // namespace

std::optional<QImage::Format> pictureFormat(const ColorLayout& layout) {
  struct Known {
    ColorLayout layout;
    QImage::Format format;
  };
  static constexpr Known all[] = {
      {{16, 0xf800, 0x7e0, 0x1f}, QImage::Format_RGB16},
      {{24, 0xff0000, 0xff00, 0xff}, QImage::Format_RGB32},
      {{30, 0x3ff00000, 0xffc00, 0x3ff}, QImage::Format_RGB30},
      {{30, 0x3ff, 0xffc00, 0x3ff00000}, QImage::Format_BGR30},
      {{32, 0xff0000, 0xff00, 0xff}, QImage::Format_ARGB32_Premultiplied},
  };
  for (const Known& known : all) {
    if (known.layout == layout) return known.format;
  }
  return std::nullopt;
}

void FirstPicture::setBackground(QWidget& widget) {
  if (xConnection() == nullptr) return;
  const auto target = targetIn(xWindowOf(widget));
  if (!target) return;
  const QImage picture = widget.grab().toImage().convertToFormat(target->format);
  if (picture.isNull() || !fitsOneRequest(picture)) return;
  const xcb_pixmap_t pixmap = xcb_generate_id(xConnection());
  xcb_create_pixmap(xConnection(), target->depth, pixmap, target->window,
                    static_cast<std::uint16_t>(picture.width()),
                    static_cast<std::uint16_t>(picture.height()));
  upload(picture, target->depth, pixmap);
  setBackPixmap(target->window, pixmap);
  xcb_clear_area(xConnection(), 0, target->window, 0, 0, 0, 0);  // repaints a window that is already mapped
  xcb_flush(xConnection());
  xcb_free_pixmap(xConnection(), pixmap);  // the window keeps its own reference
  isSet_ = true;
}

void FirstPicture::clearBackground(const QWidget& widget) {
  if (!std::exchange(isSet_, false)) return;
  setBackPixmap(xWindowOf(widget), XCB_BACK_PIXMAP_NONE);
}

}  // namespace platform
