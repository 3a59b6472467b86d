#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/harness/processes/child_process.h"

namespace {

namespace fs = std::filesystem;
using test_support::ExitStatus;
using testing::HasSubstr;
using testing::StartsWith;

constexpr ExitStatus kGoesOn{.code = 100};

// The exit status and the output of a program.
struct Output {
  std::optional<ExitStatus> status = {};
  std::string output = {};
  std::string error = {};

  bool operator==(const Output&) const = default;
};

void PrintTo(const Output& output, std::ostream* stream) {
  *stream << "status " << (output.status ? output.status->code.value_or(-1) : -2)
          << "\noutput: " << output.output << "\nerror: " << output.error;
}

Output run(std::vector<std::string> arguments, const std::string& program = COMMAND_LINE_PROBE) {
  arguments.insert(arguments.begin(), program);
  test_support::ChildProcess child;
  test_support::ChildOptions options;
  options.error = test_support::Redirection::pipe();
  if (!child.start(arguments, options)) return {.error = "did not start"};
  const auto status = child.wait();
  return {status, child.takeOutput(), child.takeErrorOutput()};
}

Output refused(const std::string& argument) {
  return {.status = ExitStatus{.code = 2},
          .error = "TovalinTray: unexpected argument \"" + argument + "\"; see TovalinTray --help\n"};
}

TEST(CommandLine, WithoutArgumentsAgentStarts) {
  EXPECT_EQ(run({}), Output{.status = kGoesOn});
}

TEST(CommandLine, HelpIsPrintedToStandardOutput) {
  const Output output = run({"--help"});
  EXPECT_EQ(output.status, ExitStatus{.code = 0});
  EXPECT_EQ(output.error, "");
  EXPECT_THAT(output.output, StartsWith("Usage: TovalinTray [--help | --version]\n\n"));
  EXPECT_THAT(output.output, HasSubstr("\n  --help     show this text and end\n"));
  EXPECT_THAT(output.output, HasSubstr("\n  --version  show the version and end\n"));
  EXPECT_TRUE(output.output.ends_with('\n'));
}

TEST(CommandLine, VersionOutsideBundleIsUnknown) {
  EXPECT_EQ(run({"--version"}),
            (Output{.status = ExitStatus{.code = 0}, .output = "TovalinTray (version unknown)\n"}));
}

TEST(CommandLine, VersionIsThatOfBundle) {
  const fs::path contents = "/tmp/Agent.app/Contents";
  fs::create_directories(contents / "MacOS");
  fs::copy_file(COMMAND_LINE_PROBE, contents / "MacOS/probe");
  std::ofstream(contents / "Info.plist")
      << "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>3.2.1 %s</string></dict></plist>";
  EXPECT_EQ(run({"--version"}, contents / "MacOS/probe"),
            (Output{.status = ExitStatus{.code = 0}, .output = "TovalinTray 3.2.1 %s\n"}));
  fs::remove_all("/tmp/Agent.app");
}

TEST(CommandLine, ProcessSerialNumberIsIgnored) {
  EXPECT_EQ(run({"-psn_0_1048832"}), Output{.status = kGoesOn});
  EXPECT_EQ(run({"-psn_0_1048832", "--version"}), run({"--version"}));
  EXPECT_EQ(run({"--version", "-psn_0_1048832"}), run({"--version"}));
  EXPECT_EQ(run({"-psn_0_1048832", "--wrong"}), refused("--wrong"));
  EXPECT_EQ(run({"-psn"}), refused("-psn"));
}

// Arguments, and the one that is refused.
struct Wrong {
  const char* name;
  std::vector<std::string> arguments;
  std::string refused;
};

void PrintTo(const Wrong& wrong, std::ostream* stream) {
  *stream << wrong.name;
}

class WrongCommandLine : public testing::TestWithParam<Wrong> {};

TEST_P(WrongCommandLine, FirstWrongArgumentIsReportedOnStandardError) {
  EXPECT_EQ(run(GetParam().arguments), refused(GetParam().refused));
}

INSTANTIATE_TEST_SUITE_P(
    CommandLine, WrongCommandLine,
    testing::Values(Wrong{"UnknownOption", {"--quit"}, "--quit"}, Wrong{"ShortForm", {"-h"}, "-h"},
                    Wrong{"Word", {"help"}, "help"}, Wrong{"EmptyArgument", {""}, ""},
                    Wrong{"OtherCase", {"--Help"}, "--Help"}, Wrong{"Abbreviation", {"--vers"}, "--vers"},
                    Wrong{"OptionWithValue", {"--help=all"}, "--help=all"},
                    Wrong{"FormatInIt", {"%s%n"}, "%s%n"}, Wrong{"TwoUnknown", {"-a", "-b"}, "-a"},
                    Wrong{"HelpBehindUnknown", {"-a", "--help"}, "-a"},
                    Wrong{"UnknownBehindHelp", {"--help", "-a"}, "-a"},
                    Wrong{"UnknownBehindVersion", {"--version", "-a"}, "-a"},
                    Wrong{"VersionBehindHelp", {"--help", "--version"}, "--version"},
                    Wrong{"HelpBehindVersion", {"--version", "--help"}, "--help"},
                    Wrong{"HelpTwice", {"--help", "--help"}, "--help"}),
    [](const auto& test) { return test.param.name; });

}  // namespace
