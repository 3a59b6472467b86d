#pragma once

#include "platform/geometry.h"

// Where everything stands in the two notices, in points from the lower left of the parent. One notice is one
// of these. Values, any thread. Frozen: doc/compatibility.md.
struct NoticeLayout {
  const char* text;
  platform::Rect window;     // its content
  platform::Rect leftPane;   // in the content
  platform::Rect rightPane;  // in the content
  platform::Rect iconView;   // in the left pane
  double iconSide;           // what the picture is scaled to before the view draws it smaller
  platform::Rect textField;  // in the right pane; may reach beyond it and is clipped there
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
