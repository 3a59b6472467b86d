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

// The kinds of controls that the support window is made of. Frames and font sizes are in points. Main thread.

[[nodiscard]] std::shared_ptr<platform::TextField> makeLabel(platform::Rect frame, std::string_view text,
                                                             platform::TextAlignment alignment,
                                                             platform::Font font);

[[nodiscard]] std::shared_ptr<platform::Button> makePushButton(platform::Rect frame, std::string_view title,
                                                               std::function<void()> action);

// A text without a background, to be read only.
[[nodiscard]] std::shared_ptr<platform::TextView> makeTextView(platform::Rect frame, double fontSize);
