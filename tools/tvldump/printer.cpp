#include "tools/tvldump/printer.h"

#include "tools/tvldump/record_reader.h"

namespace tools {

bool printFile(std::string_view name, std::span<const char> bytes, Printer& printer) {
  RecordReader reader(bytes);
  printer.beginFile(name);
  for (Item item; reader.read(item);) printer.item(item);
  printer.endFile(bytes.size(), reader.damage());
  return !reader.damage();
}

}  // namespace tools
