#include "platform/portable/http/transfer_end.h"

#include <gtest/gtest.h>

namespace {

using platform::TransferEnd;

struct Case {
  const char* what;
  TransferEnd end;
  bool isWhole;
};

class TransferEnds : public testing::TestWithParam<Case> {};

TEST_P(TransferEnds, IsWholeReplyMatchesTable) {
  EXPECT_EQ(platform::isWholeReply(GetParam().end), GetParam().isWhole);
}

constexpr CURLcode sent = CURLE_OK;
constexpr CURLcode sendFailed = CURLE_SEND_ERROR;
constexpr CURLcode timedOut = CURLE_OPERATION_TIMEDOUT;

// Columns of TransferEnd: curl result, whether the header is complete, HTTP status, announced and received
// body size.
INSTANTIATE_TEST_SUITE_P(
    , TransferEnds,
    testing::Values(Case{"Usual", {sent, true, 200, 5, 5}, true},
                    Case{"SizeNotAnnounced", {sent, true, 200, -1, 5}, true},
                    Case{"ErrorPage", {sent, true, 500, 5, 5}, true},
                    Case{"RedirectWithoutPlace", {sent, true, 302, 5, 5}, true},
                    Case{"EndWithinTheHead", {sent, false, 200, -1, 0}, false},
                    Case{"RefusedEarly", {sendFailed, true, 413, 5, 5}, true},
                    Case{"TakenEarly", {sendFailed, true, 200, 5, 5}, true},
                    Case{"TakenEarlyWithoutBody", {sendFailed, true, 200, 0, 0}, true},
                    Case{"TakenEarlyThenSilence", {timedOut, true, 200, 5, 5}, true},
                    Case{"EarlyReplyIsCut", {sendFailed, true, 200, 5, 4}, false},
                    Case{"EarlyReplyIsCutBySilence", {timedOut, true, 200, 5, 4}, false},
                    Case{"EarlyReplyOfUnknownSize", {sendFailed, true, 200, -1, 5}, false},
                    Case{"EarlyReplyOfUnknownSizeWithoutBody", {timedOut, true, 200, -1, 0}, false},
                    Case{"EarlyHeadIsCut", {sendFailed, false, 200, 0, 0}, false},
                    Case{"NoReply", {sendFailed, false, 0, -1, 0}, false},
                    Case{"RedirectedEarly", {sendFailed, true, 307, 5, 5}, false},
                    Case{"RedirectedEarlyWithoutBody", {sendFailed, true, 302, 0, 0}, false},
                    Case{"RedirectedEarlyThenSilence", {timedOut, true, 303, 0, 0}, false},
                    Case{"TargetOfARedirectFails", {sendFailed, false, 307, 0, 0}, false},
                    Case{"TargetOfARedirectIsSilent", {timedOut, false, 307, 0, 0}, false},
                    Case{"ReceivingFails", {CURLE_RECV_ERROR, true, 200, 5, 5}, false},
                    Case{"BodyIsCut", {CURLE_PARTIAL_FILE, true, 200, 5, 4}, false},
                    Case{"TooLong", {CURLE_WRITE_ERROR, true, 200, 5, 5}, false},
                    Case{"TooManyRedirects", {CURLE_TOO_MANY_REDIRECTS, true, 302, 0, 0}, false},
                    Case{"RedirectToAnotherScheme", {CURLE_UNSUPPORTED_PROTOCOL, true, 307, 0, 0}, false}),
    [](const auto& test) { return test.param.what; });

}  // namespace
