#pragma once

#include <memory>

#include "notices/notice_layout.h"

namespace platform {
class Window;
}

// Creates the window of a notice, hidden. Returns nullptr if no window can be created. Main thread only.
[[nodiscard]] std::shared_ptr<platform::Window> makeNoticeWindow(const NoticeLayout& layout);
