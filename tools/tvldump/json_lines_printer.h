#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "tools/tvldump/line_writer.h"
#include "tools/tvldump/printer.h"

namespace tools {

// Prints a flat JSON object a line for each record, and one of the type "file" behind those of a file. Each
// has what the header says, so that a line can be understood, sorted and counted without those around it:
// "file", "date", "identifier", "operatingSystem" and "agentVersion", the last four null where the file ended
// before them. The lines of different files and runs can be put one behind another.
class JsonLinesPrinter : public Printer {
 public:
  // `stream` must outlive this object. It gets pieces of some 100 KB, the last at `end`.
  explicit JsonLinesPrinter(std::ostream& stream) : writer_(stream) {}

  void begin() override {}
  void end() override { writer_.flush(); }
  void beginFile(std::string_view name) override;
  void item(const Item& item) override;
  void endFile(std::size_t size, const std::optional<Damage>& damage) override;

 private:
  struct Print;
  struct Header {
    std::string file;                                                            // the member alone
    std::optional<std::string> date, identifier, operatingSystem, agentVersion;  // as JSON
    [[nodiscard]] std::string text() const;
  };

  void setOffsetsHead(std::uint64_t head);

  LineWriter writer_;
  Header header_;
  // What the lines of nearby records begin with, once the file's header is read: all before the last four
  // digits of the offset.
  std::string beginning_;
  std::uint64_t offsetsHead_ = 0;  // the digits of the offset in it; 0: none
};

}  // namespace tools
