#pragma once

#include "platform/geometry.h"

// The layout of the two notices, in points from the lower left corner of the parent. Values, usable on any
// thread. Frozen: doc/compatibility.md.
struct NoticeLayout {
  const char* text;
  platform::Rect window;     // its content area
  platform::Rect leftPane;   // in the content area
  platform::Rect rightPane;  // in the content area
  platform::Rect iconView;   // in the left pane
  double iconSide;           // the image is scaled to this size before the view scales it down
  platform::Rect textField;  // in the right pane; clipped to it
};

inline constexpr const char* noticeTitle = "Tovalin Notification";
inline constexpr double noticeFontSize = 14;

inline constexpr NoticeLayout deviceAccessNotice{.text = "To allow access,\nplease respond on your iDevice.",
                                                 .window = {0, 0, 420, 80},
                                                 .leftPane = {0, 0, 90, 80},
                                                 .rightPane = {90, 0, 330, 80},
                                                 .iconView = {15, 10, 60, 60},
                                                 .iconSide = 420,
                                                 .textField = {5, 14, 330, 50}};

inline constexpr NoticeLayout loadingNotice{.text = "Now Loading...",
                                            .window = {0, 0, 260, 80},
                                            .leftPane = {0, 0, 90, 80},
                                            .rightPane = {90, 0, 170, 80},
                                            .iconView = {15, 10, 60, 60},
                                            .iconSide = 260,
                                            .textField = {5, 22, 150, 30}};
