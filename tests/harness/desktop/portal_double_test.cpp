#include "tests/harness/desktop/portal_double.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace test_support {
namespace {

using namespace std::chrono_literals;
using testing::ContainsRegex;
using testing::HasSubstr;

class PortalDoubleTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(bus_.start()); }

  void startCall(ChildProcess& call, const std::string& method, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"dbus-send",
                                     "--bus=" + bus_.address(),
                                     "--print-reply",
                                     "--dest=org.freedesktop.portal.Desktop",
                                     "/org/freedesktop/portal/desktop",
                                     method};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ASSERT_TRUE(call.start(command, {.error = Redirection::pipe()}));
  }

  std::string call(const std::string& method, const std::vector<std::string>& arguments) {
    ChildProcess child;
    startCall(child, method, arguments);
    if (!child.wait()) return {};
    return child.takeOutput() + child.takeErrorOutput();
  }

  std::string read(const std::string& key = "color-scheme") {
    return call("org.freedesktop.portal.Settings.Read",
                {"string:org.freedesktop.appearance", "string:" + key});
  }

  SessionBus bus_;
  PortalDouble portal_;
};

TEST_F(PortalDoubleTest, ReadReturnsValueInNestedVariant) {
  ASSERT_TRUE(portal_.start(bus_, "1"));
  EXPECT_THAT(read(), ContainsRegex("variant +variant +uint32 1\n"));
  EXPECT_EQ(portal_.waitForEvent("read"), "read org.freedesktop.appearance color-scheme");
}

TEST_F(PortalDoubleTest, ReadOfAbsentOrUnknownSettingFailsWithNotFound) {
  ASSERT_TRUE(portal_.start(bus_));
  EXPECT_THAT(read(), HasSubstr("org.freedesktop.portal.Error.NotFound"));
  ASSERT_TRUE(portal_.setSilently("1"));
  EXPECT_THAT(read(), HasSubstr("uint32 1"));
  EXPECT_THAT(read("contrast"), HasSubstr("org.freedesktop.portal.Error.NotFound"));
  ASSERT_TRUE(portal_.setAbsent());
  EXPECT_THAT(read(), HasSubstr("org.freedesktop.portal.Error.NotFound"));
}

TEST_F(PortalDoubleTest, ValueOfUnexpectedTypeIsReturned) {
  ASSERT_TRUE(portal_.start(bus_, "string dark"));
  EXPECT_THAT(read(), HasSubstr("string \"dark\""));
  ASSERT_TRUE(portal_.setSilently("int -1"));
  EXPECT_THAT(read(), HasSubstr("int32 -1"));
  ASSERT_TRUE(portal_.setSilently("bool true"));
  EXPECT_THAT(read(), HasSubstr("boolean true"));
  ASSERT_TRUE(portal_.setSilently("double 1.5"));
  EXPECT_THAT(read(), HasSubstr("double 1.5"));
  ASSERT_TRUE(portal_.setSilently("list one"));
  EXPECT_THAT(read(), ContainsRegex("array \\[\n +string \"one\""));
  EXPECT_FALSE(portal_.setSilently("nonsense"));
}

TEST_F(PortalDoubleTest, ReadAllReturnsNamespace) {
  ASSERT_TRUE(portal_.start(bus_, "2"));
  const std::string all = call("org.freedesktop.portal.Settings.ReadAll", {"array:string:"});
  EXPECT_THAT(all, HasSubstr("string \"org.freedesktop.appearance\""));
  EXPECT_THAT(all, ContainsRegex("string \"color-scheme\"\n +variant +uint32 2\n"));
}

TEST_F(PortalDoubleTest, HasVersionProperty) {
  ASSERT_TRUE(portal_.start(bus_));
  EXPECT_THAT(call("org.freedesktop.DBus.Properties.Get",
                   {"string:org.freedesktop.portal.Settings", "string:version"}),
              HasSubstr("uint32 1"));
}

TEST_F(PortalDoubleTest, ChangesAreSignalledUnlessSilent) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  ChildProcess monitor;
  ASSERT_TRUE(monitor.start(
      {"dbus-monitor", "--address", bus_.address(), "interface=org.freedesktop.portal.Settings"}));
  const auto lineWith = [&](const std::string& part) {
    std::optional<std::string> line = monitor.readLine();
    while (line && line->find(part) == std::string::npos) line = monitor.readLine();
    return line.value_or("");
  };
  ASSERT_THAT(lineWith("NameLost"), HasSubstr("NameLost"));
  ASSERT_TRUE(portal_.setSilently("5"));
  ASSERT_TRUE(portal_.signalUnrelatedChange());
  ASSERT_TRUE(portal_.set("1"));
  ASSERT_THAT(lineWith("\"org"), HasSubstr("org.gnome.desktop.interface"));
  ASSERT_THAT(lineWith("\"contrast"), HasSubstr("contrast"));
  ASSERT_THAT(lineWith("\"color"), HasSubstr("color-scheme"));
  EXPECT_THAT(lineWith("uint32"), HasSubstr("uint32 1"));
}

TEST_F(PortalDoubleTest, DelayedReplyDelaysNoOtherCall) {
  ASSERT_TRUE(portal_.start(bus_, "0"));
  ASSERT_TRUE(portal_.delayAnswers(30s));
  ChildProcess waiting;
  startCall(waiting, "org.freedesktop.portal.Settings.Read",
            {"string:org.freedesktop.appearance", "string:color-scheme"});
  ASSERT_TRUE(portal_.waitForEvent("read"));
  ASSERT_TRUE(portal_.delayAnswers(0ms));
  EXPECT_THAT(read(), HasSubstr("uint32 0"));
  EXPECT_TRUE(waiting.running());
}

TEST_F(PortalDoubleTest, UnknownCommandIsRejected) {
  ASSERT_TRUE(portal_.start(bus_));
  EXPECT_EQ(portal_.ask("dance").text, "unknown command dance");
}

TEST_F(PortalDoubleTest, StartFailsBesideAnotherPortal) {
  ASSERT_TRUE(portal_.start(bus_));
  PortalDouble second;
  EXPECT_FALSE(second.start(bus_));
}

}  // namespace
}  // namespace test_support
