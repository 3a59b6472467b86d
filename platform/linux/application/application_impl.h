#pragma once

#include "platform/application.h"
#include "platform/linux/windows/modal_stack.h"
#include "platform/linux/windows/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack modalRuns;
  PostedWork postedWork{modalRuns};
  bool hasDisplay = true;

  [[noreturn]] void end(int status);
};

}  // namespace platform
