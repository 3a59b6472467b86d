#include "tests/platform/portable/property_lists/property_list_support.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <utility>

namespace property_list_support {

GuardedBytes::GuardedBytes(std::string_view bytes) : size_(bytes.size()) {
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const std::size_t readable = (size_ + page - 1) / page * page;
  mapped_ = readable + page;
  memory_ = ::mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory_ == MAP_FAILED) std::abort();
  if (::mprotect(static_cast<std::byte*>(memory_) + readable, page, PROT_NONE) == -1) std::abort();
  start_ = static_cast<std::byte*>(memory_) + readable - size_;
  if (size_ > 0) std::memcpy(start_, bytes.data(), size_);
}

GuardedBytes::~GuardedBytes() {
  ::munmap(memory_, mapped_);
}

std::optional<PropertyList> parse(std::string_view bytes) {
  const GuardedBytes guarded(bytes);
  return platform::parsePropertyList(guarded.span());
}

PropertyList text(std::string_view value) {
  return {std::string(value)};
}

PropertyList number(std::int64_t value) {
  return {value};
}

PropertyList dataOf(std::string_view bytes) {
  const auto view = std::as_bytes(std::span(bytes));
  return {PropertyList::Data(view.begin(), view.end())};
}

PropertyList listOf(PropertyList::Array items) {
  return {std::move(items)};
}

PropertyList pairs(PropertyList::Dictionary entries) {
  return {std::move(entries)};
}

PropertyList single(std::string key, PropertyList value) {
  return pairs({{std::move(key), std::move(value)}});
}

std::string bytes(std::initializer_list<unsigned> values) {
  std::string result;
  for (const unsigned value : values) result += static_cast<char>(value);
  return result;
}

std::string repeated(std::string_view piece, std::size_t times) {
  std::string result;
  result.reserve(piece.size() * times);
  for (std::size_t i = 0; i < times; ++i) result += piece;
  return result;
}

std::string filled(std::string_view start, std::string_view piece, std::string_view end) {
  const std::size_t room = platform::propertyListMaxBytes - start.size() - end.size();
  const std::size_t times = room / piece.size();
  const std::string blanks(room - times * piece.size(), ' ');
  return std::string(start) + repeated(piece, times) + blanks + std::string(end);
}

}  // namespace property_list_support
