#pragma once

namespace platform {

// All geometry is in points, origin at the lower left of the parent, y growing upwards. One point is one
// logical pixel. All are values, any thread.

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
