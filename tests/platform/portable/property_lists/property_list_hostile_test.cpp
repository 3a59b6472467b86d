#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <functional>

#include "tests/harness/sanitizer.h"
#include "tests/platform/portable/property_lists/property_list_binary_builder.h"
#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;
using platform::propertyListMaxBytes;

struct Hostile {
  std::string name;
  bool readable;
  std::function<std::string()> build;
};

std::string inXml(std::string_view start, std::string_view piece, std::string_view end) {
  return filled("<plist>" + std::string(start), piece, std::string(end) + "</plist>");
}

std::string manyAttributes() {
  std::string tag = "<array";
  for (int i = 0; i < 140; ++i) tag += " a" + std::to_string(i) + "=\"\"";
  return inXml("<array>", tag + "/>", "</array>");
}

// Each tag is far longer than in a genuine list, but short in relation to this one.
std::string tagsOfManyAttributes() {
  std::string tag = "<array";
  for (int i = 0; tag.size() < 16'000; ++i) tag += " a" + std::to_string(i) + "=\"\"";
  return inXml("<array>", tag + "/>", "</array>");
}

std::string oneTagOfAttributes() {
  std::string tag = "<plist";
  for (int i = 0; tag.size() < propertyListMaxBytes - 100; ++i) tag += " a" + std::to_string(i) + "=\"\"";
  return tag + "><true/></plist>";
}

std::string attributeDefaults() {
  std::string type = "<!DOCTYPE plist [";
  for (int i = 0; type.size() < propertyListMaxBytes / 2; ++i) {
    type += "<!ATTLIST true a" + std::to_string(i) + " CDATA 'x'>";
  }
  return type + "]><plist><array>" + repeated("<true/>", 15'000) + "</array></plist>";
}

std::string latin1() {
  return "<?xml version='1.0' encoding='ISO-8859-1'?><string>" +
         std::string(propertyListMaxBytes / 2 - 100, '\xE9') + "</string>";
}

std::string stringsInArray() {
  return "<plist><array>" + repeated("<string>" + std::string(30, 'a') + "</string>", 19'999) +
         "</array></plist>";
}

std::string dictionaryOfMany() {
  std::string list = "<plist><dict>";
  for (int i = 0; i < 9'999; ++i) list += "<key>" + std::to_string(i) + "</key><array/>";
  return list + "</dict></plist>";
}

std::string dictionaryInReverse() {
  std::string list = "<plist><dict>";
  for (int i = 9'999; i > 0; --i) list += "<key>" + std::to_string(10'000 + i) + "</key><array/>";
  return list + "</dict></plist>";
}

std::string dictionaryOfOneKey() {
  return "<plist><dict>" + repeated("<key>key</key><true/>", 9'999) + "</dict></plist>";
}

std::string smallDictionaries() {
  return "<plist><array>" + repeated("<dict><key>key</key><true/></dict>", 6'600) + "</array></plist>";
}

// Returns a list of a few hundred bytes plus `value`: 100 references to an array of 100 references to
// `value`.
std::string shared(const std::string& value) {
  return BinaryList{.objects = {'\xAF' + bytes({0x10, 100}) + std::string(100, '\1'),
                                '\xAF' + bytes({0x10, 100}) + std::string(100, '\2'), value},
                    .offsetSize = 4}
      .build();
}

std::string sharedText() {
  return shared('\x5F' + bytes({0x12, 0, 1, 0, 0}) + std::string(0x10000, 'a'));
}

std::string sharedData() {
  return shared('\x4F' + bytes({0x12, 0, 1, 0, 0}) + std::string(0x10000, 'a'));
}

std::string binaryArrays() {
  return BinaryList{
      .objects = {bytes({0xAF, 0x12, 0, 0x0F, 0, 0}) + std::string(0x0F0000, '\1'), bytes({0xA0})},
      .offsetSize = 4}
      .build();
}

const std::vector<Hostile>& hostileLists() {
  static const std::vector<Hostile> lists = {
      {"XmlText", true, [] { return inXml("<string>", "x", "</string>"); }},
      {"XmlCharacterData", true, [] { return inXml("<string><![CDATA[", "x", "]]></string>"); }},
      {"XmlReferences", true, [] { return inXml("<string>", "&lt;", "</string>"); }},
      {"XmlUnendedReference", false, [] { return inXml("<string>", "&", "</string>"); }},
      {"XmlLongReference", false, [] { return inXml("<string>&", "a", ";</string>"); }},
      {"XmlSections", true, [] { return inXml("<string>", "<![CDATA[]]>", "</string>"); }},
      {"XmlTextAndComments", true, [] { return inXml("<string>", "a<!---->", "</string>"); }},
      {"XmlData", true, [] { return inXml("<data>", "AAAA", "</data>"); }},
      {"XmlZeros", true, [] { return inXml("<integer>", "0", "1</integer>"); }},
      {"XmlBlanks", true, [] { return inXml("<array>", " ", "</array>"); }},
      {"XmlOneComment", true, [] { return inXml("<!--", "x", "--><true/>"); }},
      {"XmlComments", true, [] { return inXml("", "<!---->", "<true/>"); }},
      {"XmlInstructions", true, [] { return inXml("", "<?a?>", "<true/>"); }},
      {"XmlOpenElements", false, [] { return repeated("<a>", 1'000'000); }},
      {"XmlOpenArrays", false, [] { return filled("<plist>", "<array>", ""); }},
      {"XmlTinyElements", false, [] { return inXml("<array>", "<true/>", "</array>"); }},
      {"XmlAttributes", true, manyAttributes},
      {"XmlAttributesOfLongTags", false, tagsOfManyAttributes},
      {"XmlAttributesOfOneTag", false, oneTagOfAttributes},
      {"XmlLongName", false, [] { return filled("<p", "x", "><true/>"); }},
      {"XmlEntities", true,
       [] { return filled("<!DOCTYPE p [", "<!ENTITY a 'b'>", "]><plist><true/></plist>"); }},
      {"XmlQuotesInType", false, [] { return filled("<!DOCTYPE p [", "''", ""); }},
      {"XmlAttributeDefaults", true, attributeDefaults},
      {"XmlLatin1", true, latin1},
      {"XmlStrings", true, stringsInArray},
      {"XmlDictionary", true, dictionaryOfMany},
      {"XmlDictionaryInReverse", true, dictionaryInReverse},
      {"XmlDictionaryOfOneKey", true, dictionaryOfOneKey},
      {"XmlSmallDictionaries", true, smallDictionaries},
      {"BinarySharedText", false, sharedText},
      {"BinarySharedData", false, sharedData},
      {"BinaryArrays", false, binaryArrays},
      {"BinarySelf", false,
       [] {
         return binaryOf(bytes({0xAF, 0x10, 200}) + std::string(200, '\0'));
       }},
      {"OldTextParentheses", false, [] { return repeated("(", 1'000'000); }},
      {"OldTextBraces", false, [] { return filled("", "{a=", ""); }},
      {"OldTextWords", false, [] { return filled("(", "a,", ")"); }},
      {"OldTextPairs", false, [] { return filled("", "a;", ""); }},
      {"OldTextString", true, [] { return filled("\"", "x", "\""); }},
      {"OldTextEscapes", true, [] { return filled("\"", "\\n", "\""); }},
      {"OldTextUnits", true, [] { return filled("\"", "\\U4e00", "\""); }},
      {"OldTextQuotes", false, [] { return filled("", "\"", ""); }},
      {"OldTextComments", true, [] { return filled("", "/**/", "a"); }},
      {"OldTextLineComments", true, [] { return filled("", "//\n", "a"); }},
      {"OldTextData", true, [] { return filled("<", "00", ">"); }},
      {"OldTextWord", true, [] { return filled("", "a", ""); }},
  };
  return lists;
}

class HostilePropertyList : public testing::TestWithParam<Hostile> {};

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

TEST_P(HostilePropertyList, IsParsedWithinFiveSecondsOfCpuTime) {
  const GuardedBytes list(GetParam().build());
  const double start = processorSeconds();
  const auto result = platform::parsePropertyList(list.span());
  EXPECT_LT(processorSeconds() - start, 5.0);
  EXPECT_EQ(result.has_value(), GetParam().readable);
}

// Returns a field of /proc/self/status in KiB, or -1 if it is missing.
long memoryOf(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field + ":")) return std::stol(line.substr(field.size() + 1));
  }
  return -1;
}

// Runs `work` in a child process. Returns the rise of its peak resident set in MiB, at most 254, or -1 on
// failure: the child reports the value as its exit status.
long peakMegabytes(const std::function<void()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
    const long before = memoryOf("VmRSS");
    work();
    const long kilobytes = memoryOf("VmHWM") - before;
    ::_exit(before <= 0 || kilobytes < 0 ? 255 : static_cast<int>(std::min(kilobytes / 1024, 254L)));
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) != 255 ? WEXITSTATUS(status) : -1;
}

TEST_P(HostilePropertyList, IsParsedWithinFiveMebibytes) {
  if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  constexpr long maxMegabytes = 5;
  const GuardedBytes list(GetParam().build());
  const long peak = peakMegabytes([&] { (void)platform::parsePropertyList(list.span()); });
  EXPECT_GE(peak, 0);
  EXPECT_LE(peak, maxMegabytes);
}

INSTANTIATE_TEST_SUITE_P(AllForms, HostilePropertyList, testing::ValuesIn(hostileLists()),
                         [](const auto& instance) { return instance.param.name; });

TEST(PeakMemory, PeakMegabytesMeasuresAllocation) {
  if (test_support::isAddressSanitized) GTEST_SKIP() << test_support::memoryIsTheSanitizers;
  const long peak = peakMegabytes([] {
    std::string taken(32u << 20, 'x');
    // Keeps the compiler from removing the allocation.
    asm volatile("" : : "r"(taken.data()) : "memory");
  });
  EXPECT_GE(peak, 30);
  EXPECT_LE(peak, 40);
}

}  // namespace
