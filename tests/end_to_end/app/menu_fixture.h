#pragma once

#include <csignal>
#include <string>
#include <vector>

#include "tests/end_to_end/agent_test.h"
#include "tests/end_to_end/app/icon_in_panel.h"
#include "tests/end_to_end/screen_scale.h"
#include "tests/harness/processes/wait_until.h"

// The agent's icon and menu as a panel receives them over the bus.
class Menu : public InstalledAgentTest {
 protected:
  [[nodiscard]] bool showsIcon(const std::string& name) {
    return panelShows(host_, agentContents() + "/Resources", name, screenScale());
  }

  [[nodiscard]] bool iconBecomes(const std::string& name) {
    return test_support::waitUntil([&] { return showsIcon(name); });
  }

  [[nodiscard]] std::vector<std::string> visibleLabels() {
    std::vector<std::string> labels;
    for (const auto& item : host_.menu()) {
      if (item.visible) labels.push_back(item.separator ? "--" : item.label);
    }
    return labels;
  }

  void endPortal() {
    portal_.process().kill();
    ASSERT_EQ(portal_.process().wait(), test_support::ExitStatus{.signal = SIGKILL});
  }

  void clickAndWait(const std::string& label) {
    ASSERT_TRUE(host_.click(label));
    ASSERT_TRUE(host_.waitForEvent("clicked " + label));
  }
};
