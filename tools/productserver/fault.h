#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tools {

// What can go wrong with an answer; tellFaults describes each.
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

// A fault and the number of requests that it meets; without one all of them.
struct FaultOrder {
  Fault fault;
  std::optional<unsigned> count = {};

  bool operator==(const FaultOrder&) const = default;
};

// Reads "NAME" or "NAME*COUNT". Nothing when there is no such fault, or the count is not one from 1 to a
// million.
[[nodiscard]] std::optional<FaultOrder> parseFaultOrder(std::string_view text);

// The same form again.
[[nodiscard]] std::string textOf(const FaultOrder& order);

// A line for each fault: its name and what it does.
[[nodiscard]] std::string tellFaults();

}  // namespace tools
