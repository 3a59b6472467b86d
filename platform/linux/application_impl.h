#pragma once

#include "platform/application.h"
#include "platform/linux/modal_stack.h"
#include "platform/linux/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack modalRuns;
  PostedWork postedWork{modalRuns};
  bool hasDisplay = true;

  [[noreturn]] void end(int status);
};

}  // namespace platform
