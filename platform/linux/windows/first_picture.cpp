#include "platform/linux/windows/first_picture.h"

#include <xcb/xcb.h>

#include <utility>

#include <QImage>
#include <QPixmap>
#include <QWidget>
#include <QtEndian>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

// Of QImage::Format_RGB32.
constexpr std::uint8_t depthOfPicture = 24;

bool takesPicture(xcb_window_t window) {
  const std::uint8_t order = xcb_get_setup(xConnection())->image_byte_order;
  const bool isLittleEndian = order == XCB_IMAGE_ORDER_LSB_FIRST;
  if (isLittleEndian != (Q_BYTE_ORDER == Q_LITTLE_ENDIAN)) return false;
  const auto cookie = xcb_get_geometry(xConnection(), window);
  const XReply<xcb_get_geometry_reply_t> reply(xcb_get_geometry_reply(xConnection(), cookie, nullptr));
  return reply != nullptr && reply->depth == depthOfPicture;
}

bool fitsOneRequest(const QImage& picture) {
  const std::uint64_t longest = std::uint64_t{xcb_get_maximum_request_length(xConnection())} * 4;
  return static_cast<std::uint64_t>(picture.sizeInBytes()) + sizeof(xcb_put_image_request_t) + 4 <= longest;
}

void setBackground(xcb_window_t window, xcb_pixmap_t pixmap) {
  xcb_change_window_attributes(xConnection(), window, XCB_CW_BACK_PIXMAP, &pixmap);
}

void upload(const QImage& picture, xcb_pixmap_t pixmap) {
  xcb_connection_t* const x = xConnection();
  const xcb_gcontext_t context = xcb_generate_id(x);
  xcb_create_gc(x, context, pixmap, 0, nullptr);
  xcb_put_image(x, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, context, static_cast<std::uint16_t>(picture.width()),
                static_cast<std::uint16_t>(picture.height()), 0, 0, 0, depthOfPicture,
                static_cast<std::uint32_t>(picture.sizeInBytes()), picture.constBits());
  xcb_free_gc(x, context);
}

}  // namespace

void FirstPicture::give(QWidget& widget) {
  if (xConnection() == nullptr) return;
  const xcb_window_t window = xWindowOf(widget);
  const QImage picture = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
  if (picture.isNull() || !takesPicture(window) || !fitsOneRequest(picture)) return;
  const xcb_pixmap_t pixmap = xcb_generate_id(xConnection());
  xcb_create_pixmap(xConnection(), depthOfPicture, pixmap, window,
                    static_cast<std::uint16_t>(picture.width()),
                    static_cast<std::uint16_t>(picture.height()));
  upload(picture, pixmap);
  setBackground(window, pixmap);
  xcb_clear_area(xConnection(), 0, window, 0, 0, 0, 0);  // paints a window that is mapped already
  xcb_flush(xConnection());
  xcb_free_pixmap(xConnection(), pixmap);  // the window keeps it
  given_ = true;
}

void FirstPicture::takeBack(const QWidget& widget) {
  if (!std::exchange(given_, false)) return;
  setBackground(xWindowOf(widget), XCB_BACK_PIXMAP_NONE);
}

}  // namespace platform
