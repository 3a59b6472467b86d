#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "tools/common/clock_text.h"
#include "tools/common/escaped_text.h"
#include "tools/common/seconds_argument.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;

class ClockText : public testing::Test {
 protected:
  static void useZone(const char* zone) {
    ::setenv("TZ", zone, 1);
    ::tzset();
  }
  void TearDown() override {
    ::unsetenv("TZ");
    ::tzset();
  }
};

TEST_F(ClockText, PadsFieldsWithZeros) {
  useZone("UTC0");
  EXPECT_EQ(tools::clockText(system_clock::time_point(milliseconds(((1 * 60 + 2) * 60 + 3) * 1000 + 4))),
            "01:02:03.004");
}

TEST_F(ClockText, TruncatesToMilliseconds) {
  useZone("UTC0");
  EXPECT_EQ(tools::clockText(system_clock::time_point(std::chrono::microseconds(1'999'999))), "00:00:01.999");
}

TEST_F(ClockText, IsLocalTime) {
  useZone("XXX-9");
  EXPECT_EQ(tools::clockText(system_clock::time_point(milliseconds(0))), "09:00:00.000");
}

TEST(EscapedText, EscapesOtherThanPrintableAscii) {
  EXPECT_EQ(tools::escapedText("-ton ~"), "-ton ~");
  EXPECT_EQ(tools::escapedText(std::string_view("\0\n\x7f\xff", 4)), R"(\x00\x0a\x7f\xff)");
}

TEST(EscapedText, EscapesQuotesAndBackslashes) {
  EXPECT_EQ(tools::quotedText(R"(a"b\)"), R"("a\"b\\")");
}

TEST(SecondsArgument, AcceptsWholeAndDecimalSeconds) {
  EXPECT_EQ(tools::secondsArgument("10"), milliseconds(10'000));
  EXPECT_EQ(tools::secondsArgument("0.25"), milliseconds(250));
  EXPECT_EQ(tools::secondsArgument("0"), milliseconds(0));
}

TEST(SecondsArgument, RejectsOtherText) {
  for (const char* const text : {"", "x", "1x", " 1", "-1", "nan", "inf", "1000001", "1e99999"}) {
    EXPECT_EQ(tools::secondsArgument(text), std::nullopt) << text;
  }
}

}  // namespace
