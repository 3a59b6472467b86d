#include "tools/productserver/fault_list.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using tools::Fault;
using tools::FaultList;
using tools::FaultOrder;
using tools::parseFaultOrder;

TEST(FaultOrder, EveryFaultInHelpIsParsed) {
  std::istringstream lines(tools::describeFaults());
  std::string line;
  int count = 0;
  for (; std::getline(lines, line); ++count) {
    const std::string name = line.substr(2, line.find(' ', 2) - 2);
    const auto order = parseFaultOrder(name);
    ASSERT_TRUE(order) << name;
    EXPECT_EQ(nameOf(order->fault), name);
  }
  EXPECT_EQ(count, 18);
}

TEST(FaultOrder, CountFollowsAsterisk) {
  EXPECT_EQ(parseFaultOrder("silent*3"), (FaultOrder{Fault::Silent, 3}));
  EXPECT_EQ(parseFaultOrder("silent*1000000"), (FaultOrder{Fault::Silent, 1'000'000}));
  EXPECT_EQ(textOf(FaultOrder{Fault::Silent, 3}), "silent*3");
  EXPECT_EQ(textOf(FaultOrder{Fault::Silent}), "silent");
}

TEST(FaultOrder, UnknownFaultOrInvalidCountIsRefused) {
  for (const char* const text : {"", "none", "Silent", "silent ", "silen", "*3", "silent*", "silent*0",
                                 "silent*-1", "silent*1000001", "silent*3x", "silent* 3", "silent*3*3"}) {
    EXPECT_EQ(parseFaultOrder(text), std::nullopt) << text;
  }
}

TEST(FaultList, MatchesPathByPrefix) {
  FaultList list;
  list.set("/a/b", {Fault::Silent});
  EXPECT_EQ(list.take("/a/bc?d"), Fault::Silent);
  EXPECT_EQ(list.take("/a/"), std::nullopt);
  EXPECT_EQ(list.take("/x/a/b"), std::nullopt);
}

TEST(FaultList, LongestPrefixWins) {
  FaultList list;
  list.set("/a", {Fault::Silent});
  list.set("/a/b/c", {Fault::Drop});
  list.set("/a/b", {Fault::Slow});
  EXPECT_EQ(list.take("/a/b/c"), Fault::Drop);
  EXPECT_EQ(list.take("/a/b/x"), Fault::Slow);
  EXPECT_EQ(list.take("/a/x"), Fault::Silent);
}

TEST(FaultList, CountIsReducedByMatchingRequestsOnly) {
  FaultList list;
  list.set("/a", {Fault::Silent, 2});
  EXPECT_EQ(list.take("/b"), std::nullopt);
  EXPECT_EQ(list.take("/a"), Fault::Silent);
  EXPECT_EQ(list.text(), "/a=silent*1\n");
  EXPECT_EQ(list.take("/a"), Fault::Silent);
  EXPECT_EQ(list.take("/a"), std::nullopt);
  EXPECT_EQ(list.text(), "");
}

TEST(FaultList, ShorterPrefixAppliesAfterCountIsUsedUp) {
  FaultList list;
  list.set("/", {Fault::Slow});
  list.set("/a", {Fault::Silent, 1});
  EXPECT_EQ(list.take("/a"), Fault::Silent);
  EXPECT_EQ(list.take("/a"), Fault::Slow);
}

TEST(FaultList, NewFaultReplacesOldOne) {
  FaultList list;
  list.set("/a", {Fault::Silent, 5});
  list.set("/a", {Fault::Drop});
  EXPECT_EQ(list.text(), "/a=drop\n");
}

TEST(FaultList, ClearedFaultDoesNotMatch) {
  FaultList list;
  list.set("/a", {Fault::Silent});
  list.clear("/a/b");
  EXPECT_EQ(list.text(), "/a=silent\n");
  list.clear("/a");
  EXPECT_EQ(list.take("/a"), std::nullopt);
}

}  // namespace
