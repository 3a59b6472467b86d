#pragma once

#include <QObject>

#include "platform/application.h"
#include "platform/linux/modal_stack.h"

namespace platform {

struct Application::Impl {
  QObject mainThread;  // receives what is posted
  ApplicationDelegate* delegate = nullptr;
  ModalStack modalRuns;
  bool hasDisplay = true;

  [[noreturn]] void end(int status);
};

}  // namespace platform
