#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/tool_process.h"

namespace {

using test_support::ExitStatus;
using testing::HasSubstr;
using tools_test::runToEnd;
using tools_test::toolPath;

class EveryTool : public testing::TestWithParam<std::string> {};

TEST_P(EveryTool, HelpStatesThatItIsNotPartOfAgent) {
  const auto finished = runToEnd({toolPath(GetParam()), "--help"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 0});
  EXPECT_THAT(finished.output, HasSubstr("Usage: " + GetParam()));
  EXPECT_THAT(finished.output, HasSubstr("This is a development tool, not part of the agent."));
  EXPECT_EQ(finished.error, "");
}

class PrintingTool : public testing::TestWithParam<std::string> {};

TEST_P(PrintingTool, UnwritableHelpExitsWithTwo) {
  test_support::ChildOptions options;
  options.output = test_support::Redirection::file("/dev/full");
  test_support::ChildProcess child;
  ASSERT_TRUE(child.start({toolPath(GetParam()), "--help"}, options));
  EXPECT_EQ(child.wait(), ExitStatus{.code = 2});
}

INSTANTIATE_TEST_SUITE_P(Tools, PrintingTool, testing::Values("fleet", "tvldump"),
                         [](const auto& test) { return test.param; });

TEST_P(EveryTool, UnknownOptionIsRefused) {
  const auto finished = runToEnd({toolPath(GetParam()), "--wrong"});
  EXPECT_EQ(finished.status, ExitStatus{.code = 2});
  EXPECT_EQ(finished.output, "");
  EXPECT_THAT(finished.error, HasSubstr("see " + GetParam() + " --help"));
}

INSTANTIATE_TEST_SUITE_P(Tools, EveryTool, testing::Values("fleet", "mainapp", "productserver", "tvldump"),
                         [](const auto& test) { return test.param; });

}  // namespace
