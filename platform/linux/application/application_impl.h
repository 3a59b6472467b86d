#pragma once

#include "platform/application.h"
#include "platform/linux/windows/modal_stack.h"
#include "platform/linux/windows/posted_work.h"

namespace platform {

struct Application::Impl {
  ApplicationDelegate* delegate = nullptr;
  ModalStack& modalRuns = ModalStack::shared();
  PostedWork& postedWork = PostedWork::shared();
  bool hasDisplay = true;  // false once the X connection is lost

  // Calls applicationWillTerminate, unless that has been called, removes the copies of the helper programs
  // and ends the process with _exit(2), which runs no static destructors.
  [[noreturn]] void end(int status);
};

}  // namespace platform
