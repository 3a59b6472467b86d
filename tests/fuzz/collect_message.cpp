// Input: a "-ncdat" message. The records written for it must be readable and contain the values of the
// message.

#include "usage/collect_message.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "tools/tvldump/record_reader.h"
#include "usage/record_bytes.h"

namespace {

using fuzz::require;

using Message = std::array<char, record_format::message::size>;

constexpr std::size_t kHeaderItems = 4;
constexpr std::size_t kIdentifierLength = 36;
constexpr std::tm kTime = [] {
  std::tm time{};
  time.tm_year = 2024 - 1900;
  time.tm_mon = 1;
  time.tm_mday = 29;
  time.tm_hour = 23;
  time.tm_min = 59;
  time.tm_sec = 60;
  return time;
}();
constexpr std::string_view kTimeText = "2024-02-29 23:59:60";

// The rest of the message is zero.
Message messageOf(const std::uint8_t* data, std::size_t size) {
  Message message{};
  std::copy_n(data, std::min(size, message.size()), message.begin());
  return message;
}

// Second implementation of the reading of a text field.
std::string textAt(const Message& message, std::size_t offset, std::size_t maxLength) {
  std::string text;
  while (text.size() < maxLength && message.at(offset + text.size()) != '\0')
    text += message.at(offset + text.size());
  return text;
}

std::uint64_t numberAt(const Message& message, std::size_t offset, unsigned size) {
  std::uint64_t number = 0;
  for (unsigned i = 0; i < size; ++i)
    number |= std::uint64_t{static_cast<std::uint8_t>(message.at(offset + i))} << 8 * i;
  return number;
}

std::vector<tools::Item> itemsOf(const std::string& bytes) {
  tools::RecordReader reader(bytes);
  std::vector<tools::Item> items;
  while (const auto item = reader.next()) items.push_back(*item);
  require(!reader.damage(), "the written record is read completely");
  require(items.size() >= kHeaderItems, "the header is read");
  return items;
}

// Uses the name of the message for the texts of the header too.
std::string headerFor(const Message& message, const std::string& name) {
  const auto osCode = static_cast<std::uint8_t>(64 + static_cast<std::uint8_t>(message[7]) % 5);
  return headerBytes(kTime, std::string_view(name).substr(0, kIdentifierLength), osCode, name);
}

void checkHeader(const std::vector<tools::Item>& items, const std::string& name) {
  require(std::get<tools::Day>(items[0].content).date == kTimeText.substr(0, 10), "the day is kept");
  require(std::get<tools::Identifier>(items[1].content).text == "{" + name.substr(0, kIdentifierLength) + "}",
          "the identifier is kept");
  require(std::get<tools::Version>(items[3].content).bundle == name.substr(0, 15), "the version is kept");
}

void checkDeviceEvent(const Message& message, const std::string& header, const std::string& name) {
  const std::uint32_t command = dataCommandOf(message);
  const std::string bytes = header + deviceEventRecord(command, kTime, deviceNameOf(message));
  const auto items = itemsOf(bytes);
  require(items.size() == kHeaderItems + 1, "a device event is one record");
  const auto* event = std::get_if<tools::DeviceEvent>(&items.back().content);
  require(event != nullptr && event->dataCommand == command, "it is one of its data command");
  require(event->time == kTimeText, "its time is kept");
  require(event->name == (name.empty() ? "Unknown" : name), "its name is kept");
}

void checkTransfers(const Message& message, const std::string& header) {
  const auto count = static_cast<std::size_t>(numberAt(message, 14, 4));
  const std::string bytes = header + transferRecords(transferEntriesOf(message));
  const auto items = itemsOf(bytes);
  if (count > 30) return;
  require(items.size() == kHeaderItems + count, "each entry is one record");
  unsigned kind = 1;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = 18 + 22 * i;
    const std::uint64_t givenKind = numberAt(message, entry, 4);
    if (givenKind == 1 || givenKind == 2) kind = static_cast<unsigned>(givenKind);
    const auto* transfer = std::get_if<tools::Transfer>(&items[kHeaderItems + i].content);
    require(transfer != nullptr && transfer->kind == kind,
            "a transfer keeps its kind, or the last known one");
    require(transfer->size == numberAt(message, entry + 4, 8), "its size is kept");
    require(transfer->name == textAt(message, entry + 12, 9), "its name is kept");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Message message = messageOf(data, size);
  const std::string name = textAt(message, 14, 63);
  const std::string header = headerFor(message, name);
  const std::string start = header + startRecord(name, kTime) + quitRecord(kTime);
  const auto items = itemsOf(start);
  checkHeader(items, name);
  require(items.size() == kHeaderItems + 2, "a start and an end are two records");

  const auto command = numberAt(message, 10, 4);
  require(dataCommandOf(message) == command, "the data command is read");
  if (command == 3 || command == 4) checkDeviceEvent(message, header, name);
  if (command == 0) checkTransfers(message, header);
  return 0;
}
