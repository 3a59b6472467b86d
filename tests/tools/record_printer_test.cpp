#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/harness/usage_sample.h"
#include "tools/common/json_text.h"
#include "tools/tvldump/json_lines_printer.h"
#include "tools/tvldump/json_printer.h"
#include "tools/tvldump/text_printer.h"

namespace {

using namespace test_support;
using nlohmann::json;

template <typename Printer>
std::string printed(const std::string& bytes, const std::string& name = "a.dat") {
  std::ostringstream stream;
  Printer printer(stream);
  printer.begin();
  static_cast<void>(tools::printFile(name, bytes, printer));
  printer.end();
  return stream.str();
}

json jsonOf(const std::string& bytes, const std::string& name = "a.dat") {
  return json::parse(printed<tools::JsonPrinter>(bytes, name));
}

constexpr const char* kGoldenText = R"("a.dat"
         0  day 2024-03-07
        14  identifier "{00112233-4455-6677-8899-AABBCCDDEEFF}"
        54  operating system 68
        56  version "1.4.2" 1.0.0.0
        71  start 2024-03-07 09:05:00 version "1.4.2" 1.0.0.0
       107  end 2024-03-07 09:05:01
       128  device event 3 2024-03-07 09:05:02 "Pad"
       153  device event 4 2024-03-07 09:05:59 "a\"\x0a\xc3\xa9"
       180  transfer 1 size 578437695752307201 "jpg"
       194  transfer 2 size 18446744073709551615 ""
       205  transfer 1 size 9223372036854775808 "\xff!"
whole, 218 bytes
)";

constexpr const char* kGoldenJson = R"([
{"file":"a.dat","items":[
{"offset":0,"type":"day","date":"2024-03-07"},
{"offset":14,"type":"identifier","identifier":"{00112233-4455-6677-8899-AABBCCDDEEFF}"},
{"offset":54,"type":"operatingSystem","code":68},
{"offset":56,"type":"version","version":"1.4.2","fixedVersion":"1.0.0.0"},
{"offset":71,"type":"start","time":"2024-03-07 09:05:00","version":"1.4.2","fixedVersion":"1.0.0.0"},
{"offset":107,"type":"end","time":"2024-03-07 09:05:01"},
{"offset":128,"type":"deviceEvent","dataCommand":3,"time":"2024-03-07 09:05:02","name":"Pad"},
{"offset":153,"type":"deviceEvent","dataCommand":4,"time":"2024-03-07 09:05:59","name":"a\"\u000aé"},
{"offset":180,"type":"transfer","kind":1,"size":578437695752307201,"name":"jpg"},
{"offset":194,"type":"transfer","kind":2,"size":18446744073709551615,"name":""},
{"offset":205,"type":"transfer","kind":1,"size":9223372036854775808,"name":"�!","nameHex":"ff21"}
],"size":218,"damage":null}
]
)";

TEST(TextPrinter, PrintsEveryKindOfItem) {
  EXPECT_EQ(printed<tools::TextPrinter>(kUsageFile), kGoldenText);
}

TEST(TextPrinter, PrintsItemsBeforeDamage) {
  EXPECT_EQ(printed<tools::TextPrinter>(kUsageHeader.substr(0, 55)),
            "\"a.dat\"\n"
            "         0  day 2024-03-07\n"
            "        14  identifier \"{00112233-4455-6677-8899-AABBCCDDEEFF}\"\n"
            "damaged at byte 55: the file ends too early\n");
}

TEST(TextPrinter, ControlCharactersInFileNameAreEscaped) {
  EXPECT_EQ(printed<tools::TextPrinter>("", "\x1b[2J\n"),
            "\"\\x1b[2J\\x0a\"\ndamaged at byte 0: the file is empty\n");
}

TEST(JsonPrinter, PrintsEveryKindOfItem) {
  EXPECT_EQ(printed<tools::JsonPrinter>(kUsageFile), kGoldenJson);
}

TEST(JsonPrinter, NoFilePrintsEmptyArray) {
  std::ostringstream stream;
  tools::JsonPrinter printer(stream);
  printer.begin();
  printer.end();
  EXPECT_EQ(json::parse(stream.str()), json::array());
}

TEST(JsonPrinter, FilesAreArrayElements) {
  std::ostringstream stream;
  tools::JsonPrinter printer(stream);
  printer.begin();
  EXPECT_FALSE(tools::printFile("a", {}, printer));
  EXPECT_TRUE(tools::printFile("b", kUsageHeader, printer));
  printer.end();
  const json files = json::parse(stream.str());
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0]["items"], json::array());
  EXPECT_EQ(files[1]["file"], "b");
  EXPECT_EQ(files[1]["items"].size(), 4u);
}

TEST(JsonPrinter, TruncatedFileIsJsonWithDamageAtEnd) {
  for (std::size_t length = 0; length < kUsageFile.size(); ++length) {
    const json file = jsonOf(kUsageFile.substr(0, length)).at(0);
    EXPECT_EQ(file.at("size"), length);
    if (!file.at("damage").is_null()) {
      EXPECT_EQ(file.at("damage").at("offset"), length);
    }
  }
}

TEST(JsonPrinter, NameOfAnyBytesIsJson) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string name = std::string("a") + static_cast<char>(byte) + "b";
    const std::string record =
        "\x06\x08"
        "12345678\x03" +
        name;
    const json file = jsonOf(kUsageHeader + record, name).at(0);
    const json& item = file.at("items").at(4);
    EXPECT_EQ(item.contains("nameHex"), byte >= 128) << byte;
    EXPECT_EQ(file.contains("fileHex"), byte >= 128) << byte;
    EXPECT_EQ(item.at("name"), byte >= 128 ? "a\uFFFDb" : name) << byte;
  }
}

TEST(JsonPrinter, SizeKeepsAll64Bits) {
  const json items = jsonOf(kUsageFile).at(0).at("items");
  EXPECT_EQ(items.at(9).at("size").get<std::uint64_t>(), 0xFFFFFFFFFFFFFFFFu);
}

constexpr std::string_view kGoldenLines =
    R"({"file":"a.dat","date":"2024-03-07","identifier":"{00112233-4455-6677-8899-AABBCCDDEEFF}","operatingSystem":68,"agentVersion":"1.4.2",HEADER
"offset":71,"type":"start","time":"2024-03-07 09:05:00","version":"1.4.2","fixedVersion":"1.0.0.0"}
"offset":107,"type":"end","time":"2024-03-07 09:05:01"}
"offset":128,"type":"deviceEvent","dataCommand":3,"time":"2024-03-07 09:05:02","name":"Pad"}
"offset":153,"type":"deviceEvent","dataCommand":4,"time":"2024-03-07 09:05:59","name":"a\"\u000aé"}
"offset":180,"type":"transfer","kind":1,"size":578437695752307201,"name":"jpg"}
"offset":194,"type":"transfer","kind":2,"size":18446744073709551615,"name":""}
"offset":205,"type":"transfer","kind":1,"size":9223372036854775808,"name":"�!","nameHex":"ff21"}
"type":"file","size":218,"damage":null,"damageOffset":null}
)";

// Returns the golden lines: each line but the first, preceded by the header fields of the first.
std::string goldenLines() {
  std::istringstream golden{std::string(kGoldenLines)};
  std::string header, text;
  std::getline(golden, header);
  header.resize(header.find("HEADER"));
  for (std::string line; std::getline(golden, line);) text.append(header).append(line).append("\n");
  return text;
}

TEST(JsonLinesPrinter, PrintsEveryKindOfRecordWithHeader) {
  EXPECT_EQ(printed<tools::JsonLinesPrinter>(kUsageFile), goldenLines());
}

std::vector<json> linesOf(const std::string& text) {
  std::vector<json> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(json::parse(line));
  return lines;
}

TEST(JsonLinesPrinter, TruncatedFileEndsWithDamage) {
  for (std::size_t length = 0; length < kUsageFile.size(); ++length) {
    const auto lines = linesOf(printed<tools::JsonLinesPrinter>(kUsageFile.substr(0, length)));
    ASSERT_FALSE(lines.empty());
    const json& end = lines.back();
    EXPECT_EQ(end.at("type"), "file");
    EXPECT_EQ(end.at("size"), length);
    EXPECT_EQ(end.at("date").is_null(), length < 14) << length;
    EXPECT_EQ(end.at("agentVersion").is_null(), length < kUsageHeader.size()) << length;
    if (end.at("damage").is_null()) continue;
    EXPECT_EQ(end.at("damageOffset"), length);
  }
}

TEST(JsonLinesPrinter, MatchesJsonPrinter) {
  std::string bytes = kUsageFile;
  for (int byte = 0; byte < 256; ++byte) {
    const std::string name = std::string("a") + static_cast<char>(byte) + "b";
    bytes +=
        "\x06\x08"
        "12345678\x03" +
        name;
  }
  const json items = jsonOf(bytes).at(0).at("items");
  auto lines = linesOf(printed<tools::JsonLinesPrinter>(bytes));
  lines.pop_back();
  ASSERT_EQ(lines.size() + 4, items.size());
  for (std::size_t i = 0; i < lines.size(); ++i) {
    for (const char* key : {"file", "date", "identifier", "operatingSystem", "agentVersion"})
      EXPECT_EQ(lines[i].erase(key), 1u);
    EXPECT_EQ(lines[i], items.at(i + 4));
  }
}

TEST(JsonLinesPrinter, HeaderIsResetForNextFile) {
  std::ostringstream stream;
  tools::JsonLinesPrinter printer(stream);
  printer.begin();
  EXPECT_TRUE(tools::printFile("whole", kUsageFile, printer));
  EXPECT_FALSE(tools::printFile("cut", kUsageHeader.substr(0, 20), printer));
  printer.end();
  const json last = linesOf(stream.str()).back();
  EXPECT_EQ(last.at("file"), "cut");
  EXPECT_EQ(last.at("date"), "2024-03-07");
  EXPECT_TRUE(last.at("identifier").is_null());
}

TEST(JsonLinesPrinter, InvalidUtf8FileNameIsAddedInHex) {
  const json line = linesOf(printed<tools::JsonLinesPrinter>(kUsageHeader, "a\xff\"")).at(0);
  EXPECT_EQ(line.at("file"), "a\uFFFD\"");
  EXPECT_EQ(line.at("fileHex"), "61ff22");
}

TEST(JsonLinesPrinter, LongNamesAndManyLinesAreComplete) {
  std::string bytes = kUsageHeader;
  for (int i = 0; i < 5000; ++i)
    bytes +=
        "\x04\x13"
        "2024-03-07 09:05:02" +
        std::string(1, '\x3f') + std::string(63, i % 2 == 0 ? '\xff' : '\x01');
  const auto lines = linesOf(printed<tools::JsonLinesPrinter>(bytes));
  ASSERT_EQ(lines.size(), 5001u);
  EXPECT_EQ(lines[4998].at("nameHex").get<std::string>().size(), 126u);
}

// The printer caches the leading digits of the offset between lines and must reset them for another file.
TEST(JsonLinesPrinter, OffsetsBeyondTenThousandMatchJsonPrinter) {
  std::string bytes = kUsageHeader;
  while (bytes.size() < 120'000) bytes += kUsageRecords;
  std::ostringstream stream;
  tools::JsonLinesPrinter printer(stream);
  printer.begin();
  for (const char* name : {"long.dat", "again.dat"})
    static_cast<void>(tools::printFile(name, bytes, printer));
  printer.end();
  const json items = jsonOf(bytes)[0]["items"];
  std::istringstream lines(stream.str());
  for (int file = 0; file < 2; ++file) {
    std::string line;
    for (std::size_t i = 4; i < items.size(); ++i) {
      ASSERT_TRUE(std::getline(lines, line));
      ASSERT_EQ(json::parse(line)["offset"], items[i]["offset"]) << line;
    }
    ASSERT_TRUE(std::getline(lines, line));
    ASSERT_EQ(json::parse(line)["size"], bytes.size());
  }
}

TEST(JsonLinesPrinter, LineLongerThanBufferIsComplete) {
  const std::string name(200'000, 'n');
  const auto lines = linesOf(printed<tools::JsonLinesPrinter>(kUsageFile, name));
  ASSERT_EQ(lines.size(), 8u);
  for (const json& line : lines) EXPECT_EQ(line.at("file"), name);
}

TEST(JsonText, ValidUtf8IsUnchanged) {
  for (const std::string text :
       {"~\x7f", "\u0080\u07ff", "\u0800\ud7ff\ue000\uffff", "\U00010000\U0010ffff"}) {
    EXPECT_TRUE(tools::isUtf8(text));
    EXPECT_EQ(tools::jsonString(text), '"' + text + '"');
  }
}

TEST(JsonText, InvalidUtf8IsReplacedByteByByte) {
  const std::string mark = "\uFFFD";
  EXPECT_EQ(tools::jsonString("\x80"), '"' + mark + '"') << "continuation alone";
  EXPECT_EQ(tools::jsonString("\xC3"), '"' + mark + '"') << "cut short";
  EXPECT_EQ(tools::jsonString("\xC3("), '"' + mark + "(\"") << "no continuation";
  EXPECT_EQ(tools::jsonString("\xC0\xAF"), '"' + mark + mark + '"') << "over-long form of two";
  EXPECT_EQ(tools::jsonString("\xE0\x9F\xBF"), '"' + mark + mark + mark + '"') << "over-long form of three";
  EXPECT_EQ(tools::jsonString("\xF0\x8F\xBF\xBF"), '"' + mark + mark + mark + mark + '"')
      << "over-long form of four";
  EXPECT_EQ(tools::jsonString("\xED\xA0\x80"), '"' + mark + mark + mark + '"') << "surrogate";
  EXPECT_EQ(tools::jsonString("\xF4\x90\x80\x80"), '"' + mark + mark + mark + mark + '"')
      << "beyond the last code point";
  EXPECT_EQ(tools::jsonString("\xE2\x82z"), '"' + mark + mark + "z\"") << "the third byte is no continuation";
  EXPECT_FALSE(tools::isUtf8("a\xC3"));
}

TEST(JsonText, ControlCharactersQuotesAndBackslashesAreEscaped) {
  const std::string text("\0\x1f\"\\/", 5);
  EXPECT_EQ(tools::jsonString(text), R"("\u0000\u001f\"\\/")");
  EXPECT_EQ(json::parse(tools::jsonString(text)), text);
}

}  // namespace
