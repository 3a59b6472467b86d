#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/harness/usage_sample.h"
#include "tests/tools/tool_process.h"

namespace {

namespace fs = std::filesystem;

using namespace test_support;
using namespace tools_test;
using nlohmann::json;
using test_support::ExitStatus;
using testing::HasSubstr;

constexpr const char* kFolder = "/tmp/dumped";
const std::string kWhole = "/tmp/dumped/whole.dat";
const std::string kCut = "/tmp/dumped/cut.dat";
const std::string kNone = "/tmp/dumped/none.dat";

class Tvldump : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directory(kFolder);
    write(kWhole, kUsageFile);
    write(kCut, kUsageFile.substr(0, 200));
  }
  void TearDown() override { fs::remove_all(kFolder); }

  static void write(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
  }

  static Finished dump(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), toolPath("tvldump"));
    return runToEnd(arguments);
  }
};

TEST_F(Tvldump, CompleteFileExitsWithZero) {
  const auto finished = dump({kWhole});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_THAT(finished.output, HasSubstr("       128  device event 3 2024-03-07 09:05:02 \"Pad\"\n"));
  EXPECT_THAT(finished.output, testing::EndsWith("whole, 218 bytes\n"));
  EXPECT_EQ(finished.error, "");
}

TEST_F(Tvldump, DamagedFileIsPrintedUpToDamageAndExitsWithOne) {
  const auto finished = dump({kCut});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.output, HasSubstr("       180  transfer 1 size 578437695752307201 \"jpg\"\n"
                                         "damaged at byte 200: the file ends too early\n"));
  EXPECT_EQ(finished.error, "");
}

TEST_F(Tvldump, DamagedFileAmongOthersExitsWithOneAndPrintsAll) {
  const auto finished = dump({"--json", kCut, kWhole});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  const json files = json::parse(finished.output);
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0]["file"], kCut);
  EXPECT_EQ(files[0]["damage"]["offset"], 200);
  EXPECT_TRUE(files[1]["damage"].is_null());
}

TEST_F(Tvldump, MissingFileExitsWithTwoAndPrintsOthers) {
  const auto finished = dump({"--json", kNone, kCut, kWhole});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.error, "tvldump: cannot read \"/tmp/dumped/none.dat\": No such file or directory\n");
  EXPECT_EQ(json::parse(finished.output).size(), 2u);
}

TEST_F(Tvldump, LinesOfSeveralFilesAreConcatenated) {
  const auto finished = dump({"--lines", kWhole, kNone, kCut});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.error, "tvldump: cannot read \"/tmp/dumped/none.dat\": No such file or directory\n");
  std::istringstream lines(finished.output);
  std::vector<json> files;
  for (std::string line; std::getline(lines, line);) {
    const json object = json::parse(line);
    if (object.at("type") == "file") files.push_back(object);
  }
  ASSERT_EQ(files.size(), 2u);
  EXPECT_EQ(files[0].at("file"), kWhole);
  EXPECT_TRUE(files[0].at("damage").is_null());
  EXPECT_EQ(files[1].at("file"), kCut);
  EXPECT_EQ(files[1].at("damage"), "the file ends too early");
  EXPECT_EQ(files[1].at("damageOffset"), 200);
}

TEST_F(Tvldump, JsonExcludesLines) {
  const auto finished = dump({"--json", "--lines", kWhole});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.error, "tvldump: --json and --lines exclude each other\nsee tvldump --help\n");
}

TEST_F(Tvldump, NoReadableFilePrintsEmptyJsonArray) {
  EXPECT_EQ(json::parse(dump({"--json", kNone}).output), json::array());
}

TEST_F(Tvldump, FolderExitsWithTwo) {
  const auto finished = dump({kFolder});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(finished.error, "tvldump: cannot read \"/tmp/dumped\": Is a directory\n");
}

TEST_F(Tvldump, FileBeyondMaximumSizeIsRefused) {
  write(kNone, "");
  fs::resize_file(kNone, (std::uintmax_t{1} << 30) + 1);
  const auto finished = dump({kNone});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_THAT(finished.error, HasSubstr("exceeds the maximum size of a usage record file"));
}

TEST_F(Tvldump, EmptyFileIsDamaged) {
  write(kNone, "");
  const auto finished = dump({kNone});
  EXPECT_EQ(finished.status, ExitStatus{.code = 1});
  EXPECT_THAT(finished.output, HasSubstr("damaged at byte 0: the file is empty\n"));
}

TEST_F(Tvldump, MissingFileArgumentExitsWithTwo) {
  const auto finished = dump({"--json"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.output, "");
  EXPECT_EQ(finished.error, "tvldump: expected at least one file\nsee tvldump --help\n");
}

TEST_F(Tvldump, DashReadsStandardInput) {
  test_support::ChildOptions options;
  options.input = test_support::Redirection::file(kWhole);
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({toolPath("tvldump"), "-"}, options));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  EXPECT_THAT(child.takeOutput(), testing::StartsWith("\"-\"\n         0  day 2024-03-07\n"));
}

TEST_F(Tvldump, FileNamedLikeOptionIsReadAfterDoubleDash) {
  write("/tmp/dumped/--json", kUsageFile);
  test_support::ChildOptions options;
  options.workingDirectory = kFolder;
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({toolPath("tvldump"), "--", "--json"}, options));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
}

TEST_F(Tvldump, PipeIsReadUntilWriterCloses) {
  ASSERT_EQ(::mkfifo(kNone.c_str(), 0600), 0);
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({toolPath("tvldump"), kNone}));
  std::ofstream pipe(kNone, std::ios::binary);
  pipe << kUsageHeader << std::flush;
  for (int i = 0; i < 10'000; ++i) pipe << kUsageRecords;
  pipe.close();
  EXPECT_EQ(child.wait(), ExitStatus{.code = 0});
  const std::size_t size = kUsageHeader.size() + 10'000 * kUsageRecords.size();
  EXPECT_THAT(child.takeOutput(), testing::EndsWith("whole, " + std::to_string(size) + " bytes\n"));
}

TEST_F(Tvldump, UnwritableOutputExitsWithTwo) {
  test_support::ChildOptions options;
  options.output = test_support::Redirection::file("/dev/full");
  options.error = test_support::Redirection::pipe();
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({toolPath("tvldump"), kWhole}, options));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 2});
  EXPECT_EQ(child.takeErrorOutput(), "tvldump: cannot write the output\n");
}

}  // namespace
