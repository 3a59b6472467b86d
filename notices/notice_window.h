#pragma once

#include <memory>

#include "notices/notice_layout.h"

namespace platform {
class Window;
}

// Builds a notice, not yet on screen; nullptr when no window is to be had. Main thread.
[[nodiscard]] std::shared_ptr<platform::Window> makeNoticeWindow(const NoticeLayout& layout);
