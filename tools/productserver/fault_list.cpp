#include "tools/productserver/fault_list.h"

namespace tools {

void FaultList::set(const std::string& pathPrefix, const FaultOrder& order) {
  const std::lock_guard lock(mutex_);
  orders_.insert_or_assign(pathPrefix, order);
}

void FaultList::clear(const std::string& pathPrefix) {
  const std::lock_guard lock(mutex_);
  orders_.erase(pathPrefix);
}

std::optional<Fault> FaultList::take(std::string_view path) {
  const std::lock_guard lock(mutex_);
  auto longest = orders_.end();
  for (auto entry = orders_.begin(); entry != orders_.end(); ++entry) {
    const bool fits = path.starts_with(entry->first);
    if (fits && (longest == orders_.end() || entry->first.size() > longest->first.size())) longest = entry;
  }
  if (longest == orders_.end()) return std::nullopt;
  auto& [fault, count] = longest->second;
  const Fault taken = fault;
  if (count && --*count == 0) orders_.erase(longest);
  return taken;
}

std::string FaultList::text() const {
  const std::lock_guard lock(mutex_);
  std::string text;
  for (const auto& [prefix, order] : orders_) text += prefix + "=" + textOf(order) + "\n";
  return text;
}

}  // namespace tools
