#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "tools/productserver/fault.h"

namespace tools {

// Maps path prefixes to faults. Thread-safe.
class FaultList {
 public:
  // Replaces the fault of the same prefix.
  void set(const std::string& pathPrefix, const FaultOrder& order);
  void clear(const std::string& pathPrefix);

  // Returns the fault for a request and counts it as used. If several prefixes match, the longest applies.
  // Returns nullopt if none matches.
  [[nodiscard]] std::optional<Fault> take(std::string_view path);

  // Returns one line for each entry: the prefix, "=" and the order with the remaining count.
  [[nodiscard]] std::string text() const;

 private:
  mutable std::mutex mutex_;
  std::map<std::string, FaultOrder> orders_;
};

}  // namespace tools
