#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/harness/processes/file_contents.h"
#include "tests/tools/tool_process.h"

namespace {

using namespace tools_test;
using nlohmann::json;
using test_support::ExitStatus;
using testing::HasSubstr;

Finished runFleet(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {toolPath("fleet"), "--installations", "6000"});
  return runToEnd(arguments);
}

TEST(Fleet, PrintsRequestsAndBytes) {
  const auto finished = runFleet({});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_THAT(finished.output, testing::StartsWith("6,000 installations; launches uniform; zones utc; 0 % "));
  for (const char* row : {"\nuploads  ", "\n  in the busiest hour, from ", "\nversion fetches  ",
                          "\nbeacons  ", "\nuploads, 1291 bytes each  ", "\nlaunches, "})
    EXPECT_THAT(finished.output, HasSubstr(row));
  EXPECT_EQ(finished.error, "");
}

TEST(Fleet, JsonContainsSettingsAndFigures) {
  const auto finished = runFleet({"--json", "--launches", "office", "--zones", "+01:00=2,-05:00", "--asleep",
                                  "12.5", "--delay", "60", "--seed", "7"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  const json report = json::parse(finished.output);
  EXPECT_EQ(report["installations"], 6000);
  EXPECT_EQ(report["launches"], "office");
  EXPECT_EQ(report["zones"], "+01:00=2,-05:00");
  EXPECT_EQ(report["sleeping"], 0.125);
  EXPECT_EQ(report["delay"], 60);
  EXPECT_EQ(report["seed"], 7);
  EXPECT_EQ(report["uploads"]["total"], 6000);
  EXPECT_EQ(report["versionFetches"]["total"], 6000);
  EXPECT_EQ(report["beacons"]["total"], 12000);
  EXPECT_EQ(report["beacons"]["peak"], 2 * report["versionFetches"]["peak"].get<int>());
  EXPECT_LE(report["busiestHour"]["uploads"]["total"], 6000);
}

TEST(Fleet, JsonOfLongZoneListIsComplete) {
  std::string zones = "+01:00=1";
  for (int i = 0; i < 200; ++i) zones += ",+05:30=2";
  const auto finished = runFleet({"--json", "--zones", zones});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  const json report = json::parse(finished.output, nullptr, false);
  ASSERT_TRUE(report.is_object()) << finished.output;
  EXPECT_EQ(report["zones"], zones);
  EXPECT_EQ(report["seed"], 1);
}

TEST(Fleet, FileBytesAddToUpload) {
  const auto bytesWith = [](const char* size) {
    return json::parse(runFleet({"--json", "--file-bytes", size}).output)["bytes"]["upload"].get<int>();
  };
  EXPECT_EQ(bytesWith("8500") - bytesWith("1500"), 7000);
}

TEST(Fleet, SvgContainsDay) {
  ASSERT_EQ(runFleet({"--svg", "/tmp/day.svg", "--launches", "office=1,uniform=2"}).status,
            ExitStatus{.code = 0});
  const std::string picture = test_support::contentsOf("/tmp/day.svg");
  EXPECT_THAT(picture, testing::StartsWith("<svg xmlns=\"http://www.w3.org/2000/svg\""));
  EXPECT_THAT(picture, HasSubstr("6,000 installations"));
  std::filesystem::remove("/tmp/day.svg");
}

TEST(Fleet, InvalidValueExitsWithTwo) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--installations", "0"}, "--installations must be a whole number from 1 to 1000000000"},
      {{"--installations", "many"}, "--installations must be a whole number"},
      {{"--installations", "1e6"}, "--installations must be a whole number"},
      {{"--launches", "lunch"}, "--launches must be uniform, office, power-cut or a mix"},
      {{"--zones", "+15:00"}, "--zones must be utc, world or a mix"},
      {{"--zones", "+01:00=1e308,+02:00=1e308"}, "--zones must be utc, world or a mix"},
      {{"--launches", "uniform=5e-324,office=5e-324"},
       "--launches must be uniform, office, power-cut or a mix"},
      {{"--svg", "/tmp/day", "--plan", "/tmp/day"}, "--svg and --plan name the same file"},
      {{"--asleep", "101"}, "--asleep must be a percentage from 0 to 100"},
      {{"--asleep", "nan"}, "--asleep must be a percentage from 0 to 100"},
      {{"--delay", "-1"}, "--delay must be a whole number from 0 to 86400"},
      {{"--file-bytes", "x"}, "--file-bytes must be a whole number from 0 to 268435456"},
      {{"--seed", ""}, "--seed must be a whole number"},
      {{"--svg", ""}, "--svg must not be empty"},
      {{"10"}, "unexpected argument; only options are accepted"}};
  for (const auto& [arguments, complaint] : cases) {
    const auto finished = runFleet(arguments);
    EXPECT_EQ(finished.status, ExitStatus{.code = 2}) << complaint;
    EXPECT_EQ(finished.output, "") << complaint;
    EXPECT_THAT(finished.error, HasSubstr("fleet: " + complaint));
  }
}

TEST(Fleet, UnwritableFileExitsWithTwo) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"/tmp/none/file", "No such file or directory"}, {"/dev/full", "No space left on device"}};
  for (const char* option : {"--svg", "--plan"}) {
    for (const auto& [path, reason] : cases) {
      const auto finished = runFleet({option, path});
      EXPECT_EQ(finished.status, ExitStatus{.code = 2}) << option << path;
      EXPECT_EQ(finished.output, "");
      EXPECT_EQ(finished.error, "fleet: cannot write \"" + path + "\": " + reason + "\n");
    }
  }
}

// Simulating this many installations would take half an hour.
TEST(Fleet, UnopenableFileIsReportedBeforeSimulation) {
  for (const char* option : {"--svg", "--plan"}) {
    const auto finished = runFleet({"--installations", "1000000000", option, "/tmp"});
    EXPECT_EQ(finished.status, ExitStatus{.code = 2}) << option;
    EXPECT_EQ(finished.error, "fleet: cannot write \"/tmp\": Is a directory\n");
  }
}

}  // namespace
