#pragma once

#include <ostream>

#include "tools/tvldump/printer.h"

namespace tools {

// Prints a line for each item, its offset first, for people. Names stand in quotes, whatever is no printable
// ASCII in them as \xNN.
class TextPrinter : public Printer {
 public:
  // `stream` must outlive this object.
  explicit TextPrinter(std::ostream& stream) : stream_(stream) {}

  void begin() override {}
  void end() override {}
  void beginFile(std::string_view name) override;
  void item(const Item& item) override;
  void endFile(std::size_t size, const std::optional<Damage>& damage) override;

 private:
  std::ostream& stream_;
};

}  // namespace tools
