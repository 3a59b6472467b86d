#include "tests/harness/desktop/session_bus.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace test_support {
namespace {

std::string busCall(const SessionBus& bus, const std::string& destination, const std::string& method) {
  ChildProcess call;
  if (!call.start(
          {"dbus-send", "--bus=" + bus.address(), "--print-reply", "--dest=" + destination, "/", method},
          {.error = Redirection::null()}) ||
      !call.wait()) {
    return {};
  }
  return call.takeOutput();
}

std::string namesOn(const SessionBus& bus) {
  return busCall(bus, "org.freedesktop.DBus", "org.freedesktop.DBus.ListActivatableNames");
}

TEST(SessionBus, ActivatesNoServiceByDefault) {
  SessionBus bus;
  ASSERT_TRUE(bus.start());
  const std::string names = namesOn(bus);
  EXPECT_NE(names.find("\"org.freedesktop.DBus\""), std::string::npos) << names;
  EXPECT_EQ(names.find("string", names.find("string") + 1), std::string::npos) << names;
}

TEST(SessionBus, ActivatesServicesOfGivenFolder) {
  std::filesystem::create_directory("/tmp/services");
  std::ofstream("/tmp/services/one.service") << "[D-BUS Service]\nName=org.example.One\nExec=/bin/false\n";
  SessionBus bus;
  ASSERT_TRUE(bus.start("/tmp/services"));
  const std::string names = namesOn(bus);
  EXPECT_NE(names.find("\"org.example.One\""), std::string::npos) << names;
}

TEST(SessionBus, TwoInstancesAreSeparate) {
  SessionBus first;
  SessionBus second;
  ASSERT_TRUE(first.start());
  ASSERT_TRUE(second.start());
  EXPECT_NE(first.address(), second.address());
  EXPECT_NE(busCall(first, "org.freedesktop.DBus", "org.freedesktop.DBus.GetId"),
            busCall(second, "org.freedesktop.DBus", "org.freedesktop.DBus.GetId"));
}

TEST(SessionBus, StoppedBusRefusesConnections) {
  SessionBus bus;
  ASSERT_TRUE(bus.start());
  ASSERT_FALSE(namesOn(bus).empty());
  bus.stop();
  EXPECT_TRUE(namesOn(bus).empty());
}

TEST(SessionBus, RemovesItsConfiguration) {
  SessionBus bus;
  ASSERT_TRUE(bus.start());
  for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
    EXPECT_EQ(entry.path().string().find("/tmp/session_bus."), std::string::npos) << entry.path();
  }
}

}  // namespace
}  // namespace test_support
