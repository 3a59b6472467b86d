#pragma once

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/notices/notice_pipe.h"
#include "tests/end_to_end/support/support_server.h"
#include "tests/end_to_end/support/support_window_driver.h"

// Installs the bundle for this server, puts all files of the support window on it, and starts the panel.
inline void setUpForSupport(TestDesktop& desktop, InstalledBundle& bundle, SupportServer& server) {
  bundle.install("/tmp/Applications/Tovalin.app");
  bundle.setServers(server.server_->origin());
  server.fillServer();
  ASSERT_TRUE(desktop.host_.start(desktop.bus_));
}

// The real agent in a panel, with a product server that has all files of the support window.
class SupportTest : public testing::Test,
                    protected TestDesktop,
                    protected InstalledBundle,
                    protected RunningAgent,
                    protected NoticePipe,
                    protected SupportServer,
                    protected SupportWindowDriver {
 protected:
  SupportTest()
      : RunningAgent(*this, *this), NoticePipe(*this, *this), SupportWindowDriver(*this, *this, *this) {}
  void SetUp() override {
    removePipe();
    setUpAgent();
    if (HasFatalFailure()) return;
    setUpForSupport(*this, *this, *this);
  }
  void TearDown() override { tearDownAgent(); }
};
