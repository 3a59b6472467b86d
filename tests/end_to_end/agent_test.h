#pragma once

#include <gtest/gtest.h>

#include "tests/end_to_end/installed_bundle.h"
#include "tests/end_to_end/running_agent.h"
#include "tests/end_to_end/test_desktop.h"
#include "tests/end_to_end/usage_files.h"

// The fixtures of this folder are composed of plain classes, which refer to one another by reference and do
// not derive from one another. A fixture derives from them, so that a test can use their members unqualified.

// The real agent on a private desktop.
class AgentTest : public testing::Test,
                  protected TestDesktop,
                  protected InstalledBundle,
                  protected RunningAgent {
 protected:
  AgentTest() : RunningAgent(*this, *this) {}
  void SetUp() override { setUpAgent(); }
  void TearDown() override { tearDownAgent(); }
};

// As AgentTest, with the bundle installed in the folder of applications.
class InstalledAgentTest : public testing::Test,
                           protected TestDesktop,
                           protected InstalledBundle,
                           protected RunningAgent {
 protected:
  InstalledAgentTest() : RunningAgent(*this, *this) {}
  void SetUp() override {
    setUpAgent();
    if (!HasFatalFailure()) install("/tmp/Applications/Tovalin.app");
  }
  void TearDown() override { tearDownAgent(); }
};
