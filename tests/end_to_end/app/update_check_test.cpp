#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <string>

#include "tests/end_to_end/agent_test.h"
#include "tests/harness/servers/product_server_double.h"

namespace {

using namespace std::string_literals;
using test_support::ProductServerDouble;
using testing::Contains;
using testing::Pair;

constexpr const char* versionPath = "/product/nimba/binary/tovalin_recent_version_info.xml";

// Returns a list with a newer version than the agent's, followed by `rest`.
std::string listWith(const std::string& rest) {
  return "<plist version=\"1.0\"><dict><key>version</key><string>99.0.0</string>" + rest + "</dict></plist>";
}

std::string repeated(const std::string& text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

class UpdateCheck : public InstalledAgentTest {
 protected:
  // Returns how often the agent runs the notification helper if the server has this list.
  [[nodiscard]] int noticesAfter(const std::string& list) {
    ProductServerDouble server;
    server.put(versionPath, list);
    setServers(server.origin());
    timeline_.clear();
    launchAgent();
    EXPECT_EQ(server.requests().size(), 1U);
    terminateAgent();
    return count("run: open");
  }

  // Returns how long the version check of a launch takes; it finds no update.
  [[nodiscard]] std::chrono::steady_clock::duration timeOfTheCheck() {
    timeline_.clear();
    launchAgent();
    const auto before = timeline_.waitFor("log 3: Dark Mode"), after = timeline_.waitFor("pipe: -ton");
    EXPECT_EQ(count("run: open"), 0);
    terminateAgent();
    return before && after ? after->time - before->time : std::chrono::steady_clock::duration::max();
  }
};

TEST_F(UpdateCheck, RequestBypassesCaches) {
  ProductServerDouble server;
  setServers(server.origin());
  launchAgent();
  ASSERT_EQ(server.requests().size(), 1U);
  EXPECT_THAT(server.requests()[0].headers, Contains(Pair("Cache-Control", "no-cache")));
}

TEST_F(UpdateCheck, UnreachableServerDelaysLaunchLessThanTwoSeconds) {
  for (const char* server :
       {"http://192.0.2.1", "http://[2001:db8::1]", "http://nobody.example", kClosedServer}) {
    setServers(server);
    auto shortest = std::chrono::steady_clock::duration::max();
    // Up to five launches, because a busy machine may delay one.
    for (int i = 0; i < 5 && shortest >= std::chrono::seconds(2); ++i)
      shortest = std::min(shortest, timeOfTheCheck());
    EXPECT_LT(shortest, std::chrono::seconds(2)) << server;
  }
}

TEST_F(UpdateCheck, DamagedListIsNoUpdate) {
  const std::string whole = listWith("");
  EXPECT_EQ(noticesAfter(whole), 1);
  const std::map<std::string, std::string> damaged{
      {"bytes without a meaning", "\0\xff\xfe\x01\x80"s + std::string(4096, '\xee')},
      {"a binary list of bytes without a meaning", "bplist00"s + std::string(4096, '\xee')},
      {"the version in an array",
       "<plist "
       "version=\"1.0\"><dict><key>version</key><array><string>99.0.0</string></array></dict></plist>"},
      {"lists within lists",
       listWith("<key>deep</key>" + repeated("<array>", 100'000) + repeated("</array>", 100'000))},
      {"the end missing", whole.substr(0, whole.size() - 10)},
  };
  for (const auto& [damage, body] : damaged) EXPECT_EQ(noticesAfter(body), 0) << damage;
}

TEST_F(UpdateCheck, OversizedListIsNoUpdate) {
  const std::string list = listWith("");
  EXPECT_EQ(noticesAfter(list + std::string(std::size_t{1} << 19, ' ')), 1);
  EXPECT_EQ(noticesAfter(list + std::string((std::size_t{16} << 20) + 1 - list.size(), ' ')), 0);
}

}  // namespace
