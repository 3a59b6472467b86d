#pragma once

#include "platform/application.h"
#include "platform/macos/windows/modal_stack.h"
#include "platform/macos/windows/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack modalRuns;
  PostedWork postedWork{modalRuns};

  [[noreturn]] void end(int status);
};

}  // namespace platform
