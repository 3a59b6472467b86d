#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/end_to_end/agent_test.h"

// The launch of an installed agent.
class Launch : public InstalledAgentTest {
 protected:
  // Returns the events up to "-ton"; later ones of the listener's thread have no fixed order.
  [[nodiscard]] std::vector<std::string> textsOfLaunch() {
    std::vector<std::string> all = texts();
    all.resize(std::min(all.size(), position("pipe: -ton") + 1));
    return all;
  }
};
