#pragma once

#include <ostream>

#include "tools/tvldump/printer.h"

namespace tools {

// Prints one JSON array with an object for each file: "file", "items" and "damage", which is null or has
// "offset" and "reason". A text that is not valid UTF-8 has an additional member with the suffix "Hex".
class JsonPrinter : public Printer {
 public:
  // `stream` must outlive this object.
  explicit JsonPrinter(std::ostream& stream) : stream_(stream) {}

  void begin() override;
  void end() override;
  void beginFile(std::string_view name) override;
  void item(const Item& item) override;
  void endFile(std::size_t size, const std::optional<Damage>& damage) override;

 private:
  std::ostream& stream_;
  bool firstFile_ = true;
  bool firstItem_ = true;
};

}  // namespace tools
