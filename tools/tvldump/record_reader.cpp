#include "tools/tvldump/record_reader.h"

#include "usage/little_endian.h"
#include "usage/record_format.h"

namespace tools {
namespace {

using record_format::Code;

constexpr std::uint8_t byteOf(Code code) {
  return static_cast<std::uint8_t>(code);
}

void takeCode(RecordCursor& cursor, Code code, std::string_view reason) {
  cursor.takeByte(byteOf(code), byteOf(code), reason);
}

void takeLength(RecordCursor& cursor, std::size_t length, std::string_view reason) {
  cursor.takeByte(static_cast<std::uint8_t>(length), static_cast<std::uint8_t>(length), reason);
}

// After damage, `bytes` is empty.
std::uint64_t sizeIn(std::string_view bytes) {
  return bytes.size() == record_format::sizeFieldWidth ? littleEndian<std::uint64_t>(bytes) : 0;
}

}  // namespace

std::optional<Item> RecordReader::next() {
  std::optional<Item> item(std::in_place);
  if (!read(*item)) item.reset();
  return item;
}

bool RecordReader::takeItem(Content& content) {
  if (damage() || (expected_ == Expected::Record && cursor_.atEnd())) return false;
  takeContent(content);
  return !damage();
}

void RecordReader::takeContent(Content& content) {
  switch (expected_) {
    case Expected::Day:
      expected_ = Expected::Identifier;
      content = takeDay();
      return;
    case Expected::Identifier:
      expected_ = Expected::OperatingSystem;
      content = takeIdentifier();
      return;
    case Expected::OperatingSystem:
      expected_ = Expected::Version;
      content = takeOperatingSystem();
      return;
    case Expected::Version:
      expected_ = Expected::Record;
      takeCode(cursor_, Code::Version, "expected the agent's version");
      content = takeVersion();
      return;
    case Expected::Record:
      return takeRecord(content);
  }
}

Day RecordReader::takeDay() {
  if (cursor_.atEnd()) cursor_.damaged("the file is empty");
  cursor_.takeFixed(record_format::magic, "not a usage record file");
  return {cursor_.takeDate()};
}

Identifier RecordReader::takeIdentifier() {
  constexpr std::string_view kBraces = "{}";
  constexpr std::string_view kReason = "identifier without braces";
  takeCode(cursor_, Code::Identifier, "expected an identifier");
  const std::uint8_t length = cursor_.takeByte(kBraces.size(), record_format::maxIdentifierTextLength,
                                               "invalid length of an identifier");
  if (cursor_.damage()) return {};
  const std::size_t start = cursor_.offset();
  cursor_.takeFixed(kBraces.substr(0, 1), kReason);
  cursor_.takeText(length - kBraces.size());
  cursor_.takeFixed(kBraces.substr(1), kReason);
  return {cursor_.since(start)};
}

OperatingSystem RecordReader::takeOperatingSystem() {
  takeCode(cursor_, Code::OperatingSystem, "expected an operating system");
  return {cursor_.takeByte(record_format::lowestOsCode, record_format::highestOsCode,
                           "invalid operating system code")};
}

// The version's code has already been taken.
Version RecordReader::takeVersion() {
  const std::string_view bundle =
      cursor_.takeCounted(record_format::maxBundleVersionLength, "version too long");
  takeLength(cursor_, record_format::fixedVersion.size(), "invalid length of the second version");
  const std::size_t start = cursor_.offset();
  cursor_.takeFixed(record_format::fixedVersion, "invalid second version");
  return {bundle, cursor_.since(start)};
}

void RecordReader::takeRecord(Content& content) {
  if (cursor_.nextIs(byteOf(Code::StartTime))) cursor_.damaged("the time of a start without its version");
  const auto code = static_cast<Code>(
      cursor_.takeByte(byteOf(Code::Version), byteOf(Code::TransferKind2), "invalid record code"));
  switch (code) {
    case Code::Version:
      return takeStart(content.emplace<Start>());
    case Code::Quit:
      content.emplace<End>().time = takeTime();
      return;
    case Code::DeviceEvent3:
      return takeDeviceEvent(record_format::message::deviceEvent3, content.emplace<DeviceEvent>());
    case Code::DeviceEvent4:
      return takeDeviceEvent(record_format::message::deviceEvent4, content.emplace<DeviceEvent>());
    case Code::TransferKind1:
      return takeTransfer(1, content.emplace<Transfer>());
    case Code::TransferKind2:
      return takeTransfer(2, content.emplace<Transfer>());
    case Code::StartTime:
    case Code::Identifier:
      break;
  }
}

void RecordReader::takeStart(Start& start) {
  start.version = takeVersion();
  takeCode(cursor_, Code::StartTime, "no time after the version of a start");
  start.time = takeTime();
}

void RecordReader::takeDeviceEvent(unsigned dataCommand, DeviceEvent& event) {
  event.dataCommand = dataCommand;
  event.time = takeTime();
  event.name = cursor_.takeCounted(record_format::maxDeviceNameLength, "device name too long");
}

void RecordReader::takeTransfer(unsigned kind, Transfer& transfer) {
  transfer.kind = kind;
  takeLength(cursor_, record_format::sizeFieldWidth, "invalid width of a size");
  transfer.size = sizeIn(cursor_.takeText(record_format::sizeFieldWidth));
  transfer.name = cursor_.takeCounted(record_format::maxTransferNameLength, "transfer name too long");
}

std::string_view RecordReader::takeTime() {
  takeLength(cursor_, record_format::timeLength, "invalid length of a time");
  const std::size_t start = cursor_.offset();
  cursor_.takeDate();
  cursor_.takeTimeOfDay();
  return cursor_.since(start);
}

}  // namespace tools
