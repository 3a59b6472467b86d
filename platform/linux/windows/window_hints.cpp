#include "platform/linux/windows/window_hints.h"

#include <xcb/xcb.h>

#include <array>

#include <QWindow>

#include "platform/linux/desktop/x_requests.h"

namespace platform {
namespace {

xcb_window_t idOf(const QWindow& window) {
  return static_cast<xcb_window_t>(window.winId());
}

}  // namespace

void setMotifHints(QWindow& window, bool closable) {
  if (xConnection() == nullptr) return;
  constexpr std::uint32_t hasFunctions = 1, hasDecorations = 2;
  constexpr std::uint32_t moves = 4, closes = 32;
  constexpr std::uint32_t border = 2, title = 8, menu = 16;
  // Fields: flags, functions, decorations, input mode, status.
  const std::array<std::uint32_t, 5> hints{hasFunctions | hasDecorations, moves | (closable ? closes : 0U),
                                           border | title | (closable ? menu : 0U), 0, 0};
  const std::uint32_t name = xAtom(xConnection(), "_MOTIF_WM_HINTS");
  xcb_change_property(xConnection(), XCB_PROP_MODE_REPLACE, idOf(window), name, name, 32, hints.size(),
                      hints.data());
  xcb_flush(xConnection());  // the main thread may block before the next flush
}

bool isMinimizedByUser(QWindow& window) {
  if (xConnection() == nullptr) return false;
  constexpr std::uint32_t allDesktops = 0xFFFFFFFF;
  const auto number = [](xcb_window_t of, const char* property) {
    return xNumber(of, xAtom(xConnection(), property), XCB_ATOM_CARDINAL);
  };
  if (number(xRoot(), "_NET_SHOWING_DESKTOP").value_or(0) != 0) return false;
  const auto current = number(xRoot(), "_NET_CURRENT_DESKTOP");
  const auto desktop = number(idOf(window), "_NET_WM_DESKTOP");
  return !current || !desktop || desktop == current || desktop == allDesktops;
}

}  // namespace platform
