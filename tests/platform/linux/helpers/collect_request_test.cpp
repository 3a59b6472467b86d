#include "platform/linux/helpers/collect_request.h"

#include <gtest/gtest.h>

#include <variant>

namespace helpers {
namespace {

using namespace std::chrono_literals;

template <typename Request>
Request parsed(const Arguments& arguments) {
  const CollectRequest request = parseCollectRequest(arguments);
  const auto* found = std::get_if<Request>(&request);
  EXPECT_NE(found, nullptr) << testing::PrintToString(arguments);
  return found == nullptr ? Request{} : *found;
}

TEST(CollectRequest, CopySubcommandsTakeSourcePatternAndTarget) {
  const auto whole = parsed<CopyFiles>({"whole", "20", "/a b", "*x", "/t"});
  EXPECT_EQ(whole.oversized, CopyFiles::Oversized::Skipped);
  EXPECT_EQ(whole.limit, 20);
  EXPECT_EQ(whole.source, "/a b");
  EXPECT_EQ(whole.pattern, "*x");
  EXPECT_EQ(whole.target, "/t");
  EXPECT_EQ(whole.name, "");
  const auto newest = parsed<CopyFiles>({"newest", "1", "/s", "p", "/t", "n"});
  EXPECT_EQ(newest.oversized, CopyFiles::Oversized::EndOnly);
  EXPECT_EQ(newest.name, "n");
}

TEST(CollectRequest, OutputAndArchiveTakeCommand) {
  const auto output = parsed<KeepOutput>({"output", "5", "7", "/t", "n", "cmd", "-o", "output"});
  EXPECT_EQ(output.limit, 5);
  EXPECT_EQ(output.timeout, 7s);
  EXPECT_EQ(output.target, "/t");
  EXPECT_EQ(output.name, "n");
  EXPECT_EQ(output.command, (Arguments{"cmd", "-o", "output"}));
  const auto archive = parsed<KeepArchive>({"archive", "/s", "/t", "n.zip", "zip", "--help"});
  EXPECT_EQ(archive.source, "/s");
  EXPECT_EQ(archive.target, "/t");
  EXPECT_EQ(archive.name, "n.zip");
  EXPECT_EQ(archive.command, (Arguments{"zip", "--help"}));
}

TEST(CollectRequest, InvalidCommandLinesAreRefused) {
  const Arguments wrong[] = {
      {},
      {"other"},
      {"whole"},
      {"whole", "1", "/s", "p"},
      {"whole", "1", "/s", "p", "/t", "n", "more"},
      {"whole", "0", "/s", "p", "/t"},
      {"whole", "-1", "/s", "p", "/t"},
      {"whole", "", "/s", "p", "/t"},
      {"whole", "1k", "/s", "p", "/t"},
      {"whole", "99999999999999999999", "/s", "p", "/t"},
      {"newest", "1", "/s", "p", "/t", ""},
      {"newest", "1", "/s", "p", "/t", "a/b"},
      {"newest", "1", "/s", "p", "/t", ".."},
      {"output", "1", "1", "/t", "n"},
      {"output", "1", "x", "/t", "n", "cmd"},
      {"output", "1", "1", "/t", ".", "cmd"},
      {"archive", "/s", "/t", "n"},
      {"archive", "/s", "t", "n", "cmd"},
      {"archive", "/s", "", "n", "cmd"},
      {"archive", "/s", "/t", "../n", "cmd"},
  };
  for (const Arguments& arguments : wrong) {
    EXPECT_TRUE(std::holds_alternative<Refusal>(parseCollectRequest(arguments)))
        << testing::PrintToString(arguments);
  }
  EXPECT_TRUE(std::holds_alternative<ShowUsage>(parseCollectRequest({"--help"})));
}

}  // namespace
}  // namespace helpers
