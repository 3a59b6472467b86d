#pragma once

namespace platform {

// Geometry is in points with the origin at the parent's lower left corner and y growing upwards. One point is
// one logical pixel. These are value types, usable on any thread.

struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  bool operator==(const Rect&) const = default;
};

}  // namespace platform
