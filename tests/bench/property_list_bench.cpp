// Measures parsePropertyList() against a bare Expat pass over the same bytes or, for a binary list, over the
// same content as XML.

#include <expat.h>

#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/property_list.h"
#include "tests/bench/pairs.h"
#include "tests/platform/portable/property_lists/property_list_binary_builder.h"

namespace {

using property_list_support::BinaryList;

constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n<dict>\n";
constexpr std::string_view tail = "</dict>\n</plist>\n";

// A third each of strings, integers and booleans.
struct Entry {
  std::string key = {};
  std::string xml = {};
  std::string binary = {};
};

Entry entry(std::size_t number) {
  const std::string text = "value " + std::to_string(number);
  Entry result{.key = "Key " + std::to_string(100 + number)};
  if (number % 3 == 0) {
    result.xml = "<string>" + text + "</string>";
    result.binary = static_cast<char>(0x50 + text.size()) + text;
  } else if (number % 3 == 1) {
    result.xml = "<integer>" + std::to_string(number) + "</integer>";
    result.binary = "\x10" + BinaryList::bigEndian(number, 1);
  } else {
    result.xml = "<true/>";
    result.binary = "\x09";
  }
  return result;
}

std::vector<Entry> entries(std::size_t count) {
  std::vector<Entry> result;
  result.reserve(count);
  for (std::size_t i = 0; i < count; ++i) result.push_back(entry(i));
  return result;
}

// The content of the main application's property file.
std::vector<Entry> propertyFile() {
  return {{.key = "Active", .xml = "<true/>", .binary = "\x09"},
          {.key = "Autorun", .xml = "<true/>", .binary = "\x09"}};
}

std::string xmlList(const std::vector<Entry>& all) {
  std::string list(head);
  for (const Entry& one : all) list += "\t<key>" + one.key + "</key>\n\t" + one.xml + "\n";
  return list.append(tail);
}

// Layout: the dictionary, its keys, its values.
std::string binaryList(const std::vector<Entry>& all) {
  std::string dictionary = "\xdf\x11" + BinaryList::bigEndian(all.size(), 2);
  for (std::size_t i = 1; i <= 2 * all.size(); ++i) dictionary += BinaryList::bigEndian(i, 2);
  BinaryList list{.objects = {dictionary}, .referenceSize = 2};
  for (const Entry& one : all) list.objects.push_back(static_cast<char>(0x50 + one.key.size()) + one.key);
  for (const Entry& one : all) list.objects.push_back(one.binary);
  return list.build();
}

void parse(const std::string& list) {
  // Parsing that fails early would distort the figure.
  if (!platform::parsePropertyList(std::as_bytes(std::span(list)))) std::abort();
}

// Runs Expat with handlers that only count elements and texts.
void readThrough(const std::string& list) {
  const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                            &XML_ParserFree);
  std::size_t count = 0;
  XML_SetUserData(parser.get(), &count);
  XML_SetElementHandler(
      parser.get(),
      [](void* events, const XML_Char*, const XML_Char**) { ++*static_cast<std::size_t*>(events); },
      [](void* events, const XML_Char*) { ++*static_cast<std::size_t*>(events); });
  XML_SetCharacterDataHandler(
      parser.get(), [](void* events, const XML_Char*, int) { ++*static_cast<std::size_t*>(events); });
  if (XML_Parse(parser.get(), list.data(), static_cast<int>(list.size()), XML_TRUE) != XML_STATUS_OK)
    std::abort();
}

void measure(const std::string& size, const std::vector<Entry>& all) {
  const std::string xml = xmlList(all), binary = binaryList(all);
  bench::print(bench::timePairs(
      "parsePropertyList, XML, " + size, [&] { parse(xml); }, [&] { readThrough(xml); }));
  bench::print(bench::timePairs(
      "parsePropertyList, binary, " + size + ", beside XML", [&] { parse(binary); },
      [&] { readThrough(xml); }));
}

}  // namespace

int main() {
  measure("2 entries", propertyFile());
  measure("200 entries", entries(200));
}
