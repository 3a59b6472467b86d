#pragma once

#include <chrono>

#include <QCoreApplication>
#include <QEventLoop>

#include "tests/harness/processes/wait_until.h"

// Serves the toolkit's events until `predicate` holds. False when it did not in time.
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
