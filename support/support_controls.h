#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "platform/geometry.h"
#include "platform/text_style.h"

namespace platform {
class Button;
class TextField;
class TextView;
}  // namespace platform

// Factory functions for the controls of the support window. Frames and font sizes are in points. Main thread
// only.

[[nodiscard]] std::shared_ptr<platform::TextField> makeLabel(platform::Rect frame, std::string_view text,
                                                             platform::TextAlignment alignment,
                                                             platform::Font font);

[[nodiscard]] std::shared_ptr<platform::Button> makePushButton(platform::Rect frame, std::string_view title,
                                                               std::function<void()> action);

// Returns a read-only text view without a background.
[[nodiscard]] std::shared_ptr<platform::TextView> makeTextView(platform::Rect frame, double fontSize);
