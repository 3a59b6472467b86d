#include "usage/server_addresses.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/child_process.h"

namespace {

namespace fs = std::filesystem;

const std::string kBundle = "/tmp/bundles/My Agent.app";
const std::string kBuiltInProduct = TOVALIN_PRODUCT_SERVER;
const std::string kBuiltInUpload = TOVALIN_TEST_UPLOAD_SERVER;
const std::string kBuiltIn = kBuiltInProduct + " " + kBuiltInUpload;

class ServerAddresses : public testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(kBundle + "/Contents/MacOS");
    fs::copy_file(SERVER_ADDRESSES_PROBE, program_);
  }
  void TearDown() override { fs::remove_all("/tmp/bundles"); }

  static void putInformation(const std::string& text) {
    std::ofstream(kBundle + "/Contents/Info.plist", std::ios::trunc) << text;
  }
  static void putEntries(const std::string& entries) {
    putInformation("<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }
  static std::string entry(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
  }
  static std::string told(const std::string& program) {
    test_support::ChildProcess probe;
    if (!probe.start({program})) return "did not start";
    return probe.readLine().value_or("told nothing");
  }

  const std::string program_ = kBundle + "/Contents/MacOS/probe";
};

TEST_F(ServerAddresses, AreThoseOfTheBundle) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090") +
             entry("TovalinTestUploadServer", "http://127.0.0.1:8091"));
  EXPECT_EQ(told(program_), "http://127.0.0.1:8090 http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, EachIsTakenByItself) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090"));
  EXPECT_EQ(told(program_), "http://127.0.0.1:8090 " + kBuiltInUpload);
  putEntries(entry("TovalinTestUploadServer", "http://127.0.0.1:8091"));
  EXPECT_EQ(told(program_), kBuiltInProduct + " http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, SlashesBehindAreDropped) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090/") +
             entry("TovalinTestUploadServer", "http://127.0.0.1:8091//"));
  EXPECT_EQ(told(program_), "http://127.0.0.1:8090 http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, EmptyOrSlashesAloneCountAsMissing) {
  putEntries(entry("TovalinProductServer", "") + entry("TovalinTestUploadServer", "/"));
  EXPECT_EQ(told(program_), kBuiltIn);
}

TEST_F(ServerAddresses, ThatAreNoStringsCountAsMissing) {
  putEntries("<key>TovalinProductServer</key><true/><key>TovalinTestUploadServer</key><array/>");
  EXPECT_EQ(told(program_), kBuiltIn);
}

TEST_F(ServerAddresses, MissingKeysGiveTheBuiltInOnes) {
  putEntries(entry("CFBundleVersion", "1.0"));
  EXPECT_EQ(told(program_), kBuiltIn);
}

TEST_F(ServerAddresses, MissingInformationGivesTheBuiltInOnes) {
  EXPECT_EQ(told(program_), kBuiltIn);
}

TEST_F(ServerAddresses, DamagedInformationGivesTheBuiltInOnes) {
  putInformation("<plist version=\"1.0\"><dict><key>TovalinProductServer</key><string>http://127.0.0.1");
  EXPECT_EQ(told(program_), kBuiltIn);
}

TEST_F(ServerAddresses, OutsideABundleAreTheBuiltInOnes) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090"));
  fs::copy_file(SERVER_ADDRESSES_PROBE, "/tmp/bundles/probe");
  EXPECT_EQ(told("/tmp/bundles/probe"), kBuiltIn);
}

}  // namespace
