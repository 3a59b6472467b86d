#pragma once

#include <chrono>

#include <QCoreApplication>
#include <QEventLoop>

#include "tests/harness/processes/wait_until.h"

// Processes Qt's events until `predicate` returns true. Returns false at the timeout.
template <typename Predicate>
[[nodiscard]] bool serveEventsUntil(Predicate predicate,
                                    std::chrono::milliseconds timeout = test_support::kPatience) {
  return test_support::waitUntil(
      [&] {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
        return predicate();
      },
      timeout);
}
