// Input: a usage record file, passed to the reader and its printers.

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"
#include "tools/tvldump/json_lines_printer.h"
#include "tools/tvldump/json_printer.h"
#include "tools/tvldump/record_reader.h"
#include "tools/tvldump/text_printer.h"

namespace {

using fuzz::require;

struct Reading {
  std::vector<std::size_t> offsets;
  std::optional<tools::Damage> damage;
};

Reading readingOf(std::span<const char> bytes) {
  tools::RecordReader reader(bytes);
  Reading reading;
  while (const auto item = reader.next()) reading.offsets.push_back(item->offset);
  reading.damage = reader.damage();
  return reading;
}

void checkPlaces(const Reading& reading, std::size_t size) {
  const auto& offsets = reading.offsets;
  require(std::ranges::adjacent_find(offsets, std::greater_equal()) == offsets.end(),
          "items follow each other");
  require(offsets.empty() || offsets.back() < size, "items lie in the file");
  require(!reading.damage || reading.damage->offset <= size, "the damage lies in the file");
  require(reading.damage || offsets.size() >= 4, "a complete file has a header");
}

// The bytes before the damage must be the beginning of an undamaged file.
void checkBeforeDamage(const Reading& reading, std::span<const char> bytes) {
  if (!reading.damage) return;
  const std::size_t end = reading.damage->offset;
  const Reading before = readingOf(bytes.first(end));
  require(before.offsets == reading.offsets, "the items before the damage do not depend on it");
  require(!before.damage || before.damage->offset == end, "nothing before the damage is wrong");
}

template <typename Printer>
std::string printed(std::span<const char> bytes) {
  std::ostringstream stream;
  Printer printer(stream);
  printer.begin();
  static_cast<void>(
      tools::printFile({bytes.data(), std::min<std::size_t>(bytes.size(), 20)}, bytes, printer));
  printer.end();
  return stream.str();
}

void checkText(const Reading& reading, const std::string& text) {
  const auto plain = [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); };
  require(std::ranges::all_of(text, plain), "the text is printable");
  const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n'));
  require(lines == reading.offsets.size() + 2, "there is a line for each item, one before and one after");
}

// Returns the items of the JSON document.
nlohmann::json checkJson(const Reading& reading, const std::string& text) {
  const auto files = nlohmann::json::parse(text, nullptr, false);
  require(files.is_array() && files.size() == 1, "the JSON is valid");
  require(files[0]["items"].size() == reading.offsets.size(), "the JSON has every item");
  require(files[0]["damage"].is_null() == !reading.damage, "the JSON tells the damage");
  return files[0]["items"];
}

bool hasMembersOf(const nlohmann::json& item, const nlohmann::json& line) {
  for (const auto& [key, value] : item.items()) {
    if (!line.contains(key) || line[key] != value) return false;
  }
  return true;
}

// Expects a line for each record and one for the file, but none for the four items of the header.
void checkLines(const Reading& reading, const nlohmann::json& items, const std::string& text) {
  std::istringstream stream(text);
  std::size_t records = 0;
  nlohmann::json last;
  for (std::string line; std::getline(stream, line); ++records) {
    last = nlohmann::json::parse(line, nullptr, false);
    require(last.is_object() && last.contains("file") && last.contains("type"), "a line is an object");
    const std::size_t item = records + 4;
    require(item >= items.size() || hasMembersOf(items[item], last), "a line has the members of the JSON");
  }
  require(records == std::max<std::size_t>(reading.offsets.size(), 4) - 3, "there is a line for each record");
  require(last["type"] == "file" && last["damage"].is_null() == !reading.damage,
          "the last one is the file's");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span bytes(reinterpret_cast<const char*>(data), size);
  const Reading reading = readingOf(bytes);
  checkPlaces(reading, size);
  checkBeforeDamage(reading, bytes);
  checkText(reading, printed<tools::TextPrinter>(bytes));
  const auto items = checkJson(reading, printed<tools::JsonPrinter>(bytes));
  checkLines(reading, items, printed<tools::JsonLinesPrinter>(bytes));
  return 0;
}
