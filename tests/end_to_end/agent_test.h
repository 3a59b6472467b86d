#pragma once

#include <gtest/gtest.h>

#include "tests/end_to_end/installed_bundle.h"
#include "tests/end_to_end/running_agent.h"
#include "tests/end_to_end/test_desktop.h"
#include "tests/end_to_end/usage_files.h"

// The fixtures of this folder are made of parts, plain classes that know one another by reference. A fixture
// names its parts as its bases, so that a test has their members as its own; parts do not derive from parts.

// The real agent on a desktop of the test's own.
class AgentTest : public testing::Test,
                  protected TestDesktop,
                  protected InstalledBundle,
                  protected RunningAgent {
 protected:
  AgentTest() : RunningAgent(*this, *this) {}
  void SetUp() override { setUpAgent(); }
  void TearDown() override { tearDownAgent(); }
};

// ... installed where an application is looked for.
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
