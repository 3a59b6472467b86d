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

// Bytes whose last stands right before memory that may not be read: a reader that goes beyond them crashes in
// any build.
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

// Reads the list from guarded bytes.
std::optional<PropertyList> parse(std::string_view bytes);

// Lists of one value.
PropertyList text(std::string_view value);
PropertyList number(std::int64_t value);
PropertyList dataOf(std::string_view bytes);
PropertyList listOf(PropertyList::Array items);
PropertyList pairs(PropertyList::Dictionary entries);
PropertyList single(std::string key, PropertyList value);

// A string from the bytes that are given as numbers.
std::string bytes(std::initializer_list<unsigned> values);

std::string repeated(std::string_view piece, std::size_t times);

// A list of just the largest size: `start`, then `piece` as often as it fits, then blanks, then `end`.
std::string filled(std::string_view start, std::string_view piece, std::string_view end);

}  // namespace property_list_support
