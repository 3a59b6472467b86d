#include <gtest/gtest.h>

#include "tests/platform/portable/property_lists/property_list_binary_builder.h"
#include "tests/platform/portable/property_lists/property_list_support.h"

namespace {

using namespace property_list_support;

struct Sample {
  std::string name;
  std::string list;
};

// No sample has optional trailing bytes: every proper prefix must differ from the whole.
std::string xmlSample() {
  return "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
         "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\"><!-- all types --><dict>\n<key>a</key><true/><key>b</key><false/>\n"
         "<key>c&lt;</key><string>\xC3\xA9&#233;<![CDATA[<]]></string>\n<key>d</key><integer>-0x10</"
         "integer>\n"
         "<key>e</key><real>1.5e3</real>\n<key>f</key><date>2001-02-03T04:05:06Z</date>\n"
         "<key>g</key><data>YWJj YQ==</data>\n<key>h</key><array><dict/><?x "
         "y?><array/></array></dict></plist>";
}

std::string wideXmlSample() {
  std::string list = bytes({0xFF, 0xFE});
  for (const char c : std::string("<plist><dict><key>a</key><string>b&gt;</string></dict></plist>")) {
    list += c;
    list += '\0';
  }
  return list;
}

std::string binarySample() {
  return BinaryList{
      .objects = {bytes({0xD3, 1, 2, 3, 4, 5, 6}), bytes({0x51, 'a'}), bytes({0x62, 0, 'b', 0x20, 0xAC}),
                  bytes({0x5F, 0x10, 3, 'c', 'd', 'e'}), bytes({0xA6, 7, 8, 9, 10, 11, 12}),
                  bytes({0xC2, 1, 13}), bytes({0x80, 9}), bytes({0x09}), bytes({0x08}), bytes({0x10, 7}),
                  bytes({0x14}) + std::string(15, '\0') + "\1", bytes({0x22, 0x3F, 0xC0, 0, 0}),
                  bytes({0x33, 0x40, 0x4E, 0, 0, 0, 0, 0, 0}), bytes({0x4F, 0x11, 0, 2, 'x', 'y'})}}
      .build();
}

std::string oldTextSample() {
  return "// all types\n{ a = word; \"b\\n\\U00e9\\101\" = 'c'; /* x */ d = ( 1, \"\\Ud83d\\Ude00\", ); e = "
         "<00 ff>; f; "
         "g = { h = (); }; }";
}

std::string stringsSample() {
  return "\"a\" = \"b\\\"\"; /* c */ d = e; \"f\";";
}

class DamagedPropertyList : public testing::TestWithParam<Sample> {};

TEST_P(DamagedPropertyList, CompleteListIsRead) {
  EXPECT_TRUE(parse(GetParam().list));
}

TEST_P(DamagedPropertyList, PrefixIsNeverReadAsCompleteList) {
  const std::string& list = GetParam().list;
  const auto whole = parse(list);
  for (std::size_t size = 0; size < list.size(); ++size) {
    EXPECT_NE(parse(std::string_view(list).substr(0, size)), whole) << size;
  }
}

TEST_P(DamagedPropertyList, ReplacedByteDoesNotCrash) {
  std::string list = GetParam().list;
  const auto whole = parse(list);
  std::size_t noticed = 0;
  for (char& byte : list) {
    const char original = byte;
    for (unsigned change = 1; change < 256; ++change) {
      byte = static_cast<char>(static_cast<unsigned char>(original) ^ change);
      if (parse(list) != whole) ++noticed;
    }
    byte = original;
  }
  EXPECT_GT(noticed, list.size() * 255 / 4);
}

TEST_P(DamagedPropertyList, RemovedByteDoesNotCrash) {
  const std::string& list = GetParam().list;
  const auto whole = parse(list);
  std::size_t noticed = 0;
  for (std::size_t i = 0; i < list.size(); ++i) {
    if (parse(list.substr(0, i) + list.substr(i + 1)) != whole) ++noticed;
  }
  EXPECT_GT(noticed, list.size() / 4);
}

INSTANTIATE_TEST_SUITE_P(AllForms, DamagedPropertyList,
                         testing::Values(Sample{"Xml", xmlSample()}, Sample{"WideXml", wideXmlSample()},
                                         Sample{"Binary", binarySample()}, Sample{"OldText", oldTextSample()},
                                         Sample{"Strings", stringsSample()}),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
