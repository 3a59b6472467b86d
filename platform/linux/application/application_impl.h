#pragma once

#include "platform/application.h"
#include "platform/linux/windows/modal_stack.h"
#include "platform/linux/windows/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack& modalRuns = ModalStack::shared();
  PostedWork& postedWork = PostedWork::shared();
  bool hasDisplay = true;

  [[noreturn]] void end(int status);
};

}  // namespace platform
