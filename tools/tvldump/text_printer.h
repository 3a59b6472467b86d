#pragma once

#include <ostream>

#include "tools/tvldump/printer.h"

namespace tools {

// Prints one line of text for each item, beginning with its offset. Names are quoted; bytes other than
// printable ASCII are shown as \xNN.
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
