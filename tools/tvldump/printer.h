#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "tools/tvldump/record_item.h"

namespace tools {

// Prints files one behind the other, each item as soon as it is there.
class Printer {
 public:
  Printer() = default;
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;
  virtual ~Printer() = default;

  // Around all files.
  virtual void begin() = 0;
  virtual void end() = 0;

  // Around one file and its items. `name` is any bytes.
  virtual void beginFile(std::string_view name) = 0;
  virtual void item(const Item& item) = 0;
  virtual void endFile(std::size_t size, const std::optional<Damage>& damage) = 0;
};

// Prints the file of these bytes; false when it is damaged.
[[nodiscard]] bool printFile(std::string_view name, std::span<const char> bytes, Printer& printer);

}  // namespace tools
