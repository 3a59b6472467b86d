#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// Faults of an answer; describeFaults describes them.
enum class Fault {
  RefuseStatus500,
  EmptyBody,
  NotUtf8,
  Overlong,
  Surrogate,
  ResetBefore,
  ResetWithinBody,
  ResetAfter,
  Drop,
  Silent,
  StallHeader,
  StallBody,
  Slow,
  Endless,
  Huge,
  RedirectLoop,
  Gzip,
  Chunked,
};

[[nodiscard]] std::string_view nameOf(Fault fault);

// A fault and the number of requests it applies to; without a number it applies to all.
struct FaultOrder {
  Fault fault;
  std::optional<unsigned> count = {};

  bool operator==(const FaultOrder&) const = default;
};

// Parses "NAME" or "NAME*COUNT". Returns nullopt if there is no such fault or the count is not from 1 to
// 1,000,000.
[[nodiscard]] std::optional<FaultOrder> parseFaultOrder(std::string_view text);

// Formats an order in the same syntax.
[[nodiscard]] std::string textOf(const FaultOrder& order);

// Returns one line for each fault: its name and description.
[[nodiscard]] std::string describeFaults();

}  // namespace tools
