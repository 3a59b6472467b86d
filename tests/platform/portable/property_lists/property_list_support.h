#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/property_list.h"

namespace property_list_support {

using platform::PropertyList;

// A copy of bytes that ends at a PROT_NONE page, so that a read beyond the end crashes in any build. Aborts
// if it cannot be mapped.
class GuardedBytes {
 public:
  explicit GuardedBytes(std::string_view bytes);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;

  [[nodiscard]] std::span<const std::byte> span() const { return {start_, size_}; }

 private:
  void* memory_ = nullptr;
  std::byte* start_ = nullptr;
  std::size_t size_ = 0;
  std::size_t mapped_ = 0;
};

// Parses a GuardedBytes copy of `bytes`.
std::optional<PropertyList> parse(std::string_view bytes);

// Property lists with the given value at the top.
PropertyList text(std::string_view value);
PropertyList number(std::int64_t value);
PropertyList dataOf(std::string_view bytes);
PropertyList listOf(PropertyList::Array items);
PropertyList pairs(PropertyList::Dictionary entries);
PropertyList single(std::string key, PropertyList value);

// Returns a string of the given byte values.
std::string bytes(std::initializer_list<unsigned> values);

std::string repeated(std::string_view piece, std::size_t times);

// Returns propertyListMaxBytes bytes: `start`, as many copies of `piece` as fit, blanks, `end`.
std::string filled(std::string_view start, std::string_view piece, std::string_view end);

}  // namespace property_list_support
