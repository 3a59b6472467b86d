#pragma once

#include <QObject>

#include "platform/application.h"

namespace platform {

struct Application::Impl {
  QObject mainThread;  // receives what is posted
  ApplicationDelegate* delegate = nullptr;
  bool hasDisplay = true;

  [[noreturn]] void end(int status);
};

}  // namespace platform
