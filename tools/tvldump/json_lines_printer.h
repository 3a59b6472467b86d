#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include "tools/tvldump/line_writer.h"
#include "tools/tvldump/printer.h"

namespace tools {

// Prints one flat JSON object per line for each record, followed by one of type "file" for each file. Every
// line contains the header values "file", "date", "identifier", "operatingSystem" and "agentVersion" (the
// last four null if the file ended before them), so that lines can be sorted and counted individually.
// Outputs of several files and runs can be concatenated.
class JsonLinesPrinter : public Printer {
 public:
  // `stream` must outlive this object. It is written in blocks of about 100 KB, the last one in `end`.
  explicit JsonLinesPrinter(std::ostream& stream) : writer_(stream) {}

  void begin() override {}
  void end() override { writer_.flush(); }
  void beginFile(std::string_view name) override;
  void item(const Item& item) override;
  void endFile(std::size_t size, const std::optional<Damage>& damage) override;

 private:
  struct Print;
  struct Header {
    std::string file;                                                            // without braces
    std::optional<std::string> date, identifier, operatingSystem, agentVersion;  // JSON values
    [[nodiscard]] std::string text() const;
  };

  void setOffsetsHead(std::uint64_t head);

  LineWriter writer_;
  Header header_;
  // The common beginning of the lines of nearby records: everything up to the last four digits of the offset.
  std::string beginning_;
  std::uint64_t offsetsHead_ = 0;  // the digits of the offset in beginning_; 0: none
};

}  // namespace tools
