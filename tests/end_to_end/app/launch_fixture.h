#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/end_to_end/agent_test.h"

// The start of an installed agent.
class Launch : public InstalledAgentTest {
 protected:
  // Up to the message; the listener's thread speaks after it.
  [[nodiscard]] std::vector<std::string> textsOfLaunch() {
    std::vector<std::string> all = texts();
    all.resize(std::min(all.size(), position("pipe: -ton") + 1));
    return all;
  }
};
