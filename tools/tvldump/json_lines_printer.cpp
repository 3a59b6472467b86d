#include "tools/tvldump/json_lines_printer.h"

#include "tools/common/json_text.h"
#include "usage/record_format.h"

namespace tools {
namespace {

// The maximum size of a line after its fixed beginning: the longest text, with up to six characters per byte
// escaped and two per byte in hexadecimal, and the member names and numbers.
constexpr std::size_t maxTailLength = 8 * record_format::maxDeviceNameLength + 512;

// Offsets that share all digits except the last four.
constexpr std::uint64_t offsetsPerHead = 10'000;

// Writes the member for a text that is not plain ASCII.
void putEscaped(Line& line, std::string_view key, std::string_view bytes) {
  const std::string begin = ",\"" + std::string(key);
  line.put(begin + "\":" + jsonString(bytes));
  if (!isUtf8(bytes)) line.put(begin + "Hex\":\"" + hexText(bytes) + "\"");
}

// `begin` is the complete ,"KEY":" of the member.
template <std::size_t size>
void putText(Line& line, const char (&begin)[size], std::string_view key, std::string_view bytes) {
  const Line before = line;
  line.put(begin);
  if (line.putIfPlain(bytes)) return line.put("\"");
  line = before;
  putEscaped(line, key, bytes);
}

void putName(Line& line, std::string_view name) {
  putText(line, ",\"name\":\"", "name", name);
}

// The reader accepts only digits and separators here.
void putTime(Line& line, std::string_view time) {
  line.put(",\"time\":\"");
  line.put(time);
  line.put("\"");
}

}  // namespace

// Prints each kind of record. Values of the header are stored for the lines that follow.
struct JsonLinesPrinter::Print {
  JsonLinesPrinter& printer;
  std::size_t offset;

  void operator()(const Day& day) const { printer.header_.date = jsonString(day.date); }
  void operator()(const Identifier& identifier) const {
    printer.header_.identifier = jsonString(identifier.text);
  }
  void operator()(const OperatingSystem& system) const {
    printer.header_.operatingSystem = std::to_string(system.code);
  }
  void operator()(const Version& version) const {
    printer.header_.agentVersion = jsonString(version.bundle);
    printer.setOffsetsHead(0);
  }
  void operator()(const Start& start) const {
    Line line = begin();
    line.put(",\"type\":\"start\"");
    putTime(line, start.time);
    putText(line, ",\"version\":\"", "version", start.version.bundle);
    putText(line, ",\"fixedVersion\":\"", "fixedVersion", start.version.fixed);
    end(line);
  }
  void operator()(const End& end) const {
    Line line = begin();
    line.put(",\"type\":\"end\"");
    putTime(line, end.time);
    this->end(line);
  }
  void operator()(const DeviceEvent& event) const {
    Line line = begin();
    line.put(",\"type\":\"deviceEvent\",\"dataCommand\":");
    line.putDigit(event.dataCommand);
    putTime(line, event.time);
    putName(line, event.name);
    end(line);
  }
  void operator()(const Transfer& transfer) const {
    Line line = begin();
    if (transfer.kind == 1) {
      line.put(",\"type\":\"transfer\",\"kind\":1,\"size\":");
    } else {
      line.put(",\"type\":\"transfer\",\"kind\":2,\"size\":");
    }
    line.put(transfer.size);
    putName(line, transfer.name);
    end(line);
  }

 private:
  [[nodiscard]] Line begin() const {
    const std::uint64_t head = offset / offsetsPerHead;
    if (head != printer.offsetsHead_) printer.setOffsetsHead(head);
    Line line = printer.writer_.begin(printer.beginning_.size() + maxTailLength);
    line.put(std::string_view(printer.beginning_));
    if (head == 0) {
      line.put(std::uint64_t{offset});
    } else {
      line.putFourDigits(static_cast<std::uint32_t>(offset % offsetsPerHead));
    }
    return line;
  }
  void end(Line& line) const {
    line.put("}\n");
    printer.writer_.end(line);
  }
};

std::string JsonLinesPrinter::Header::text() const {
  return "{\"file\":" + file + ",\"date\":" + date.value_or("null") +
         ",\"identifier\":" + identifier.value_or("null") +
         ",\"operatingSystem\":" + operatingSystem.value_or("null") +
         ",\"agentVersion\":" + agentVersion.value_or("null");
}

void JsonLinesPrinter::setOffsetsHead(std::uint64_t head) {
  beginning_ = header_.text() + ",\"offset\":" + (head == 0 ? "" : std::to_string(head));
  offsetsHead_ = head;
}

void JsonLinesPrinter::beginFile(std::string_view name) {
  header_ = {
      .file = jsonString(name), .date = {}, .identifier = {}, .operatingSystem = {}, .agentVersion = {}};
  if (!isUtf8(name)) header_.file += ",\"fileHex\":\"" + hexText(name) + "\"";
}

void JsonLinesPrinter::item(const Item& item) {
  const Print print{*this, item.offset};
  if (const auto* transfer = std::get_if<Transfer>(&item.content)) return print(*transfer);
  std::visit(print, item.content);
}

void JsonLinesPrinter::endFile(std::size_t size, const std::optional<Damage>& damage) {
  const std::string beginning = header_.text();
  const std::string damaged = damage ? jsonString(damage->reason) : "null";
  Line line = writer_.begin(beginning.size() + damaged.size() + maxTailLength);
  line.put(std::string_view(beginning));
  line.put(",\"type\":\"file\",\"size\":");
  line.put(std::uint64_t{size});
  line.put(",\"damage\":");
  line.put(std::string_view(damaged));
  line.put(",\"damageOffset\":");
  if (damage) {
    line.put(std::uint64_t{damage->offset});
  } else {
    line.put("null");
  }
  line.put("}\n");
  writer_.end(line);
}

}  // namespace tools
