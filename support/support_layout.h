#pragma once

#include "platform/geometry.h"

// The layout of the support window in points; the origin is the lower left corner of the parent. Values,
// usable on any thread. Frozen: doc/compatibility.md.
namespace support_layout {

using platform::Rect;

inline constexpr Rect window{0, 0, 420, 240};

inline constexpr Rect headerPanel{0, 105, 135, 135};
inline constexpr Rect noticePanel{135, 105, 285, 135};
inline constexpr Rect buttonBand{0, 40, 420, 65};
inline constexpr Rect bannerBand{0, 0, 420, 40};

inline constexpr Rect nameLabel{0, 24, 140, 30};
inline constexpr Rect versionLabel{0, 0, 140, 30};
inline constexpr Rect icon{0, 60, 140, 65};
inline constexpr double iconSide = window.height / 3;

inline constexpr Rect updateButton{10, 0, 120, 45};
inline constexpr Rect faqButton{150, 0, 120, 45};
inline constexpr Rect logButton{290, 0, 120, 45};
inline constexpr Rect copyrightLabel{0, 45, 420, 20};

inline constexpr Rect noticeHeading{0, 80, 280, 30};
inline constexpr Rect firstLink{5, 60, 280, 20};
inline constexpr Rect secondLink{5, 30, 280, 20};
inline constexpr Rect description{5, 20, 240, 60};

inline constexpr Rect banner{0, 0, 420, 40};

}  // namespace support_layout
