#include "tests/end_to_end/usage/session_records.h"

#include <variant>

#include "tools/mainapp/collect_message_bytes.h"
#include "tools/tvldump/record_reader.h"
#include "usage/record_format.h"

namespace {

namespace layout = record_format::message;

std::string deviceRecord(unsigned dataCommand, std::string_view name) {
  return "device " + std::to_string(dataCommand) + " " + std::string(name);
}
std::string transferRecord(unsigned kind, std::uint64_t size, std::string_view name) {
  return "transfer " + std::to_string(kind) + " " + std::to_string(size) + " " + std::string(name);
}

// Without the items of the header, which are not records.
struct RecordName {
  std::string operator()(const tools::Start&) const { return "start"; }
  std::string operator()(const tools::End&) const { return "end"; }
  std::string operator()(const tools::DeviceEvent& event) const {
    return deviceRecord(event.dataCommand, event.name);
  }
  std::string operator()(const tools::Transfer& transfer) const {
    return transferRecord(transfer.kind, transfer.size, transfer.name);
  }
  std::string operator()(const auto&) const { return {}; }
};

// Transfers have no time.
struct RecordTime {
  std::string_view operator()(const tools::Start& start) const { return start.time; }
  std::string_view operator()(const tools::End& end) const { return end.time; }
  std::string_view operator()(const tools::DeviceEvent& event) const { return event.time; }
  std::string_view operator()(const auto&) const { return {}; }
};

}  // namespace

bool countRecords(std::string_view file, RecordCounts& counts) {
  tools::RecordReader reader(file);
  std::string_view day;
  bool isOneDays = true;
  while (const auto item = reader.next()) {
    if (const auto* header = std::get_if<tools::Day>(&item->content)) day = header->date;
    const std::string_view time = std::visit(RecordTime{}, item->content);
    isOneDays = isOneDays && (time.empty() || time.starts_with(day));
    const std::string name = std::visit(RecordName{}, item->content);
    if (!name.empty()) ++counts[name];
  }
  return !reader.damage() && isOneDays;
}

std::string differenceOf(const RecordCounts& written, const RecordCounts& found) {
  RecordCounts surplus = found;
  for (const auto& [record, count] : written) surplus[record] -= count;
  std::string lines;
  for (const auto& [record, count] : surplus) {
    if (count != 0) lines += record + ": " + std::to_string(count) + " more found than written\n";
  }
  return lines;
}

DataMessage DataMessages::next() {
  return below(2) == 0 ? deviceEvent() : transfers();
}

DataMessage DataMessages::deviceEvent() {
  const unsigned dataCommand = 3 + below(2);
  const std::string name =
      below(4) == 0 ? "" : "Pad " + std::to_string(++serial_) + std::string(below(50), '+');
  return {tools::collectMessage(layout::deviceNameOffset, dataCommand) + name + '\0',
          {deviceRecord(dataCommand, name.empty() ? record_format::unknownDeviceName : name)}};
}

// An entry of a kind other than 1 and 2 is recorded with the kind of the previous entry; the first one with
// 1.
DataMessage DataMessages::transfers() {
  const unsigned count = 1 + below(layout::maxEntries);
  DataMessage message{tools::collectMessage(tools::transferMessageSize(count), layout::transfers)};
  putLittleEndian(message.bytes, layout::entryCountOffset, count, 4);
  unsigned recorded = 1;
  for (unsigned index = 0; index < count; ++index) {
    const unsigned kind = below(4);
    if (kind == 1 || kind == 2) recorded = kind;
    const std::uint64_t size = ++serial_ * 0x0100'0001;
    const std::string name(below(record_format::maxTransferNameLength + 1), 'n');
    tools::putTransfer(message.bytes, index, kind, size, name);
    message.records.push_back(transferRecord(recorded, size, name));
  }
  return message;
}

DataMessage DataMessages::nextWithoutRecord() {
  if (below(2) == 0) return {tools::collectMessage(layout::deviceNameOffset + 1, 5)};
  DataMessage message{tools::collectMessage(layout::size - 1, layout::transfers)};
  putLittleEndian(message.bytes, layout::entryCountOffset, below(2) == 0 ? 0 : layout::maxEntries + 1, 4);
  return message;
}
