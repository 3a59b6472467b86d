#include "tools/tvldump/text_printer.h"

#include <iomanip>
#include <string>

#include "tools/common/escaped_text.h"

namespace tools {
namespace {

constexpr int kOffsetWidth = 10;

std::string versionText(const Version& version) {
  return "version " + quotedText(version.bundle) + " " + std::string(version.fixed);
}

// Returns the line for each kind of item, without its offset.
struct ItemText {
  std::string operator()(const Day& day) const { return "day " + std::string(day.date); }
  std::string operator()(const Identifier& identifier) const {
    return "identifier " + quotedText(identifier.text);
  }
  std::string operator()(const OperatingSystem& system) const {
    return "operating system " + std::to_string(system.code);
  }
  std::string operator()(const Version& version) const { return versionText(version); }
  std::string operator()(const Start& start) const {
    return "start " + std::string(start.time) + " " + versionText(start.version);
  }
  std::string operator()(const End& end) const { return "end " + std::string(end.time); }
  std::string operator()(const DeviceEvent& event) const {
    return "device event " + std::to_string(event.dataCommand) + " " + std::string(event.time) + " " +
           quotedText(event.name);
  }
  std::string operator()(const Transfer& transfer) const {
    return "transfer " + std::to_string(transfer.kind) + " size " + std::to_string(transfer.size) + " " +
           quotedText(transfer.name);
  }
};

}  // namespace

void TextPrinter::beginFile(std::string_view name) {
  stream_ << quotedText(name) << '\n';
}

void TextPrinter::item(const Item& item) {
  stream_ << std::setw(kOffsetWidth) << item.offset << "  " << std::visit(ItemText{}, item.content) << '\n';
}

void TextPrinter::endFile(std::size_t size, const std::optional<Damage>& damage) {
  if (damage) {
    stream_ << "damaged at byte " << damage->offset << ": " << damage->reason << '\n';
  } else {
    stream_ << "whole, " << size << " bytes\n";
  }
}

}  // namespace tools
