#pragma once

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/notices/notice_pipe.h"

// The real agent with its notification pipe.
class NoticeTest : public testing::Test,
                   protected TestDesktop,
                   protected InstalledBundle,
                   protected RunningAgent,
                   protected NoticePipe {
 protected:
  NoticeTest() : RunningAgent(*this, *this), NoticePipe(*this, *this) {}
  void SetUp() override {
    removePipe();
    setUpAgent();
  }
  void TearDown() override { tearDownAgent(); }
};
