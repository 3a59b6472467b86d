#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tools/productserver/fault.h"

namespace tools {

// Which requests are met by which fault, told by how their paths begin. Any thread.
class FaultList {
 public:
  // Takes the place of the one that was set for the same beginning.
  void set(const std::string& pathPrefix, const FaultOrder& order);
  void clear(const std::string& pathPrefix);

  // The fault for the next request of this path, counted as used; of several that fit, the one with the
  // longest beginning. Nothing when none fits.
  [[nodiscard]] std::optional<Fault> take(std::string_view path);

  // A line for each: the beginning, "=" and the order, with the count that is left.
  [[nodiscard]] std::string text() const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, FaultOrder> orders_;
};

}  // namespace tools
