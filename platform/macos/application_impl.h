#pragma once

#include "platform/application.h"
#include "platform/macos/modal_stack.h"
#include "platform/macos/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack modalRuns;
  PostedWork postedWork{modalRuns};

  [[noreturn]] void end(int status);
};

}  // namespace platform
