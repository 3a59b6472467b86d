#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "tools/tvldump/record_item.h"

namespace tools {

// Prints files one after another, each item as soon as it was read.
class Printer {
 public:
  Printer() = default;
  Printer(const Printer&) = delete;
  Printer& operator=(const Printer&) = delete;
  virtual ~Printer() = default;

  // Called before the first and after the last file.
  virtual void begin() = 0;
  virtual void end() = 0;

  // Called before and after the items of a file. `name` may contain any bytes.
  virtual void beginFile(std::string_view name) = 0;
  virtual void item(const Item& item) = 0;
  virtual void endFile(std::size_t size, const std::optional<Damage>& damage) = 0;
};

// Prints the file with these bytes. Returns false if it is damaged.
[[nodiscard]] bool printFile(std::string_view name, std::span<const char> bytes, Printer& printer);

}  // namespace tools
