#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/platform/linux/helpers/helper_run.h"

namespace helper_test {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class OpenTest : public testing::Test {
 protected:
  [[nodiscard]] Ended open(const std::vector<std::string>& arguments) const {
    std::vector<std::string> argv{helper("open")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return run(argv, {.environment = environment()});
  }

  // Like the agent: PATH begins with the folder of the helpers, TOVALIN_ORIGINAL_PATH is the user's PATH.
  [[nodiscard]] std::map<std::string, std::optional<std::string>> environment() const {
    return {{"PATH", folder_ + "/private:" + userPath_},
            {"TOVALIN_ORIGINAL_PATH", userPath_},
            {"REPORT", report_}};
  }

  [[nodiscard]] std::vector<std::string> argvOfStarted() const {
    return fieldsAfter(awaitReport(report_), "argv=");
  }

  const std::string folder_ = newFolder();
  const std::string report_ = folder_ + "/report";
  const std::string userPath_ = folder_ + "/bin:/usr/bin:/bin";
  const std::string bundle_ = folder_ + "/The Bundle.app";
  const std::string program_ = bundle_ + "/Contents/MacOS/The Bundle";
};

TEST_F(OpenTest, ArgumentsArePassedVerbatim) {
  placeReporter(program_);
  const Ended ended =
      open({"-a", bundle_, "--args", "-title", "two words", "", "--args", "line\nfeed", "'\"$HOME`\\"});
  EXPECT_EQ(0, ended.code);
  EXPECT_EQ("", ended.output + ended.error);
  EXPECT_THAT(argvOfStarted(),
              ElementsAre(program_, "-title", "two words", "", "--args", "line\nfeed", "'\"$HOME`\\"));
}

TEST_F(OpenTest, BundleAloneStartsWithoutArguments) {
  placeReporter(program_);
  EXPECT_EQ(0, open({bundle_ + "/"}).code);
  EXPECT_THAT(argvOfStarted(), ElementsAre(program_));
}

TEST_F(OpenTest, RunsThroughShell) {
  placeReporter("/tmp/plain.app/Contents/MacOS/plain");
  const Ended ended =
      run({"/bin/sh", "-c", helper("open") + " -a /tmp/plain.app --args -message \"Do you?\" -actions Yes"},
          {.environment = environment()});
  EXPECT_EQ(0, ended.code);
  EXPECT_THAT(argvOfStarted(),
              ElementsAre("/tmp/plain.app/Contents/MacOS/plain", "-message", "Do you?", "-actions", "Yes"));
}

TEST_F(OpenTest, RelativeBundleIsNotLookedUpOnPath) {
  placeReporter(program_);
  auto options = test_support::ChildOptions{.environment = environment()};
  options.workingDirectory = folder_;
  EXPECT_EQ(0, run({helper("open"), "The Bundle.app"}, options).code);
  EXPECT_THAT(argvOfStarted(), ElementsAre("The Bundle.app/Contents/MacOS/The Bundle"));
}

TEST_F(OpenTest, DoesNotWaitForProgram) {
  writeProgram(program_, "echo $$ >'" + folder_ + "/pid'; exec sleep 1000");
  EXPECT_EQ(0, open({bundle_}).code);
  EXPECT_TRUE(isAlive(awaitContent(folder_ + "/pid")));
}

TEST_F(OpenTest, ProgramInheritsNoSignalStateOrDescriptors) {
  placeReporter(program_);
  EXPECT_EQ(
      0, run({testProgram("careless_parent"), helper("open"), bundle_}, {.environment = environment()}).code);
  const auto report = awaitReport(report_);
  EXPECT_THAT(fieldsAfter(report, "leads session="), ElementsAre("1"));
  EXPECT_THAT(fieldsAfter(report, "ignores "), ElementsAre());
  EXPECT_THAT(fieldsAfter(report, "blocks "), ElementsAre());
  EXPECT_THAT(fieldsAfter(report, "fd"),
              ElementsAre("0=/dev/null", StartsWith("1=pipe:"), StartsWith("2=pipe:")));
}

TEST_F(OpenTest, ClosedStandardStreamsAreReplacedByDevNull) {
  placeReporter(program_);
  EXPECT_EQ(0, run({"/bin/sh", "-c", "exec \"$@\" <&- >&- 2>&-", "sh", helper("open"), bundle_},
                   {.environment = environment()})
                   .code);
  EXPECT_THAT(fieldsAfter(awaitReport(report_), "fd"),
              ElementsAre("0=/dev/null", "1=/dev/null", "2=/dev/null"));
}

TEST_F(OpenTest, ProgramGetsOriginalPath) {
  placeReporter(program_);
  EXPECT_EQ(0, open({bundle_}).code);
  const auto report = awaitReport(report_);
  EXPECT_THAT(fieldsAfter(report, "PATH="), ElementsAre(userPath_));
  EXPECT_THAT(fieldsAfter(report, "TOVALIN_ORIGINAL_PATH"), ElementsAre(" is unset"));
}

TEST_F(OpenTest, WithoutOriginalPathPathIsUnchanged) {
  placeReporter(program_);
  EXPECT_EQ(
      0,
      run({helper("open"), bundle_}, {.environment = {{"PATH", "/x:/usr/bin"}, {"REPORT", report_}}}).code);
  EXPECT_THAT(fieldsAfter(awaitReport(report_), "PATH="), ElementsAre("/x:/usr/bin"));
}

TEST_F(OpenTest, OnlyProgramOfBundleIsStarted) {
  placeReporter(bundle_ + "/Contents/MacOS/Another");
  EXPECT_EQ(0, open({bundle_}).code);
  EXPECT_THAT(argvOfStarted(), ElementsAre(bundle_ + "/Contents/MacOS/Another"));
}

TEST_F(OpenTest, MissingBundleIsReported) {
  const Ended ended = open({"-a", bundle_, "--args", "x"});
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("open: no bundle at " + bundle_ + "\n", ended.error);
}

TEST_F(OpenTest, ProgramWithoutExecutePermissionIsReported) {
  writeFile(program_, "#!/bin/sh\n");
  const Ended ended = open({bundle_});
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("open: " + program_ + ": Permission denied\n", ended.error);
}

TEST_F(OpenTest, InvalidExecutableIsReported) {
  writeFile(program_, "not a program");
  fs::permissions(program_, fs::perms::owner_all);
  const Ended ended = open({bundle_});
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("open: " + program_ + ": Exec format error\n", ended.error);
}

TEST_F(OpenTest, UrlIsPassedWithoutShell) {
  placeReporter(folder_ + "/bin/xdg-open");
  const std::string url = "https://example.app/?a=1&b=$(touch /tmp/seen);c 'd' \"e\"";
  EXPECT_EQ(0, open({url}).code);
  EXPECT_THAT(argvOfStarted(), ElementsAre("xdg-open", url));
  EXPECT_FALSE(fs::exists("/tmp/seen"));
}

TEST_F(OpenTest, XdgOpenIsFoundOnOriginalPath) {
  placeReporter(folder_ + "/bin/xdg-open");
  writeProgram(folder_ + "/private/xdg-open", "exit 0");
  EXPECT_EQ(0, open({"https://a.example"}).code);
  const auto report = awaitReport(report_);
  EXPECT_THAT(fieldsAfter(report, "PATH="), ElementsAre(userPath_));
  EXPECT_THAT(fieldsAfter(report, "leads session="), ElementsAre("1"));
}

TEST_F(OpenTest, FileIsPassedToXdgOpen) {
  placeReporter(folder_ + "/bin/xdg-open");
  writeFile(folder_ + "/a file.zip", "");
  EXPECT_EQ(0, open({folder_ + "/a file.zip"}).code);
  EXPECT_THAT(argvOfStarted(), ElementsAre("xdg-open", folder_ + "/a file.zip"));
}

TEST_F(OpenTest, DoesNotWaitForXdgOpen) {
  writeProgram(folder_ + "/bin/xdg-open", "echo $$ >'" + folder_ + "/pid'; exec sleep 1000");
  EXPECT_EQ(0, open({"https://a.example"}).code);
  EXPECT_TRUE(isAlive(awaitContent(folder_ + "/pid")));
}

TEST_F(OpenTest, MissingFileIsReported) {
  const Ended ended = open({folder_ + "/a file.zip"});
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("open: " + folder_ + "/a file.zip: No such file or directory\n", ended.error);
}

TEST_F(OpenTest, MissingXdgOpenIsReported) {
  const Ended ended =
      run({helper("open"), "https://a.example"}, {.environment = {{"TOVALIN_ORIGINAL_PATH", folder_}}});
  EXPECT_EQ(1, ended.code);
  EXPECT_EQ("open: xdg-open: No such file or directory\n", ended.error);
}

TEST_F(OpenTest, UnknownOptionIsRefusedWithMessage) {
  for (const std::string argument : {"-x", "--manual", "-", "-x.app"}) {
    const Ended ended = open({argument});
    EXPECT_EQ(2, ended.code);
    EXPECT_THAT(ended.error, HasSubstr("\"" + argument + "\""));
  }
  EXPECT_EQ(2, open({}).code);
}

TEST_F(OpenTest, HelpIsPrinted) {
  const Ended ended = open({"--help"});
  EXPECT_EQ(0, ended.code);
  EXPECT_THAT(ended.output, StartsWith("Usage: open -a"));
  EXPECT_EQ("", ended.error);
}

}  // namespace
}  // namespace helper_test
