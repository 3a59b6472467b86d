#include "tools/mainapp/line_buffer.h"

#include <gtest/gtest.h>

namespace {

TEST(LineBuffer, LineAppendedInPiecesIsJoined) {
  tools::LineBuffer buffer;
  buffer.append("sen");
  EXPECT_EQ(buffer.takeLine(), std::nullopt);
  buffer.append("d -non\nq");
  EXPECT_EQ(buffer.takeLine(), "send -non");
  EXPECT_EQ(buffer.takeLine(), std::nullopt);
}

TEST(LineBuffer, LinesAppendedAtOnceAreSplit) {
  tools::LineBuffer buffer;
  buffer.append("a\n\nb\n");
  EXPECT_EQ(buffer.takeLine(), "a");
  EXPECT_EQ(buffer.takeLine(), "");
  EXPECT_EQ(buffer.takeLine(), "b");
  EXPECT_EQ(buffer.takeRest(), std::nullopt);
}

TEST(LineBuffer, RestIsTextWithoutNewline) {
  tools::LineBuffer buffer;
  buffer.append("quit");
  EXPECT_EQ(buffer.takeRest(), "quit");
  EXPECT_EQ(buffer.takeRest(), std::nullopt);
}

}  // namespace
