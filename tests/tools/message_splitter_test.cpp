#include "tools/mainapp/message_splitter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tools {

void PrintTo(const Message& message, std::ostream* stream) {
  *stream << (message.known ? "known " : "unknown ") << testing::PrintToString(message.text);
}

}  // namespace tools

namespace {

using namespace std::string_view_literals;

struct SplitCase {
  const char* name;
  std::string_view bytes;
  std::vector<tools::Message> messages;
};

tools::Message known(const char* text) {
  return {text, true};
}

tools::Message unknown(std::string_view text) {
  return {std::string(text), false};
}

class MessageSplitter : public testing::TestWithParam<SplitCase> {};

TEST_P(MessageSplitter, MatchesTable) {
  EXPECT_THAT(tools::splitMessages(GetParam().bytes), testing::ElementsAreArray(GetParam().messages));
}

INSTANTIATE_TEST_SUITE_P(
    Table, MessageSplitter,
    testing::Values(
        SplitCase{"NothingGivesNothing", "", {}}, SplitCase{"Up", "-ton", {known("-ton")}},
        SplitCase{"AwayIsNotUpWithARest", "-toff", {known("-toff")}},
        SplitCase{"OneLetterMessages", "-m", {known("-m")}},
        SplitCase{"TwoMerged", "-m-u", {known("-m"), known("-u")}},
        SplitCase{"SharedPrefixesMerged", "-ton-toff-ton", {known("-ton"), known("-toff"), known("-ton")}},
        SplitCase{"TheSameTwice", "-u-u", {known("-u"), known("-u")}},
        SplitCase{"APrefixOfTwoMessagesIsUnknown", "-to", {unknown("-to")}},
        SplitCase{"OneByteShortOfAMessage", "-tof", {unknown("-tof")}},
        SplitCase{"UnknownBytesInARowAreOneMessage", "hello", {unknown("hello")}},
        SplitCase{"UnknownBetweenKnown", "-m!!-u", {known("-m"), unknown("!!"), known("-u")}},
        SplitCase{"ATerminatorIsUnknown", "-ton\0-m"sv, {known("-ton"), unknown("\0"sv), known("-m")}},
        SplitCase{"ADoubledDashStartsNoMessage", "--m", {unknown("-"), known("-m")}},
        SplitCase{"CaseMatters", "-TON", {unknown("-TON")}},
        SplitCase{"ALineEndIsNotPartOfAMessage", "-u\n", {known("-u"), unknown("\n")}}),
    [](const auto& test) { return std::string(test.param.name); });

}  // namespace
