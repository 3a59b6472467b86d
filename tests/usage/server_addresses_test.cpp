#include "usage/server_addresses.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "tests/usage/bundle_probe_fixture.h"

namespace {

const std::string kBuiltInProduct = TOVALIN_PRODUCT_SERVER;
const std::string kBuiltInUpload = TOVALIN_TEST_UPLOAD_SERVER;
const std::string kBuiltIn = kBuiltInProduct + " " + kBuiltInUpload;

class ServerAddresses : public settings_test::BundleProbe {
 protected:
  ServerAddresses() : BundleProbe(SERVER_ADDRESSES_PROBE) {}

  static std::string entry(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key><string>" + value + "</string>";
  }
};

TEST_F(ServerAddresses, AreThoseOfBundle) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090") +
             entry("TovalinTestUploadServer", "http://127.0.0.1:8091"));
  EXPECT_EQ(output(program_), "http://127.0.0.1:8090 http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, EachIsReadIndependently) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090"));
  EXPECT_EQ(output(program_), "http://127.0.0.1:8090 " + kBuiltInUpload);
  putEntries(entry("TovalinTestUploadServer", "http://127.0.0.1:8091"));
  EXPECT_EQ(output(program_), kBuiltInProduct + " http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, TrailingSlashesAreRemoved) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090/") +
             entry("TovalinTestUploadServer", "http://127.0.0.1:8091//"));
  EXPECT_EQ(output(program_), "http://127.0.0.1:8090 http://127.0.0.1:8091");
}

TEST_F(ServerAddresses, EmptyOrSlashesAloneSelectBuiltIn) {
  putEntries(entry("TovalinProductServer", "") + entry("TovalinTestUploadServer", "/"));
  EXPECT_EQ(output(program_), kBuiltIn);
}

TEST_F(ServerAddresses, OtherTypeThanStringSelectsBuiltIn) {
  putEntries("<key>TovalinProductServer</key><true/><key>TovalinTestUploadServer</key><array/>");
  EXPECT_EQ(output(program_), kBuiltIn);
}

TEST_F(ServerAddresses, MissingKeysSelectBuiltIn) {
  putEntries(entry("CFBundleVersion", "1.0"));
  EXPECT_EQ(output(program_), kBuiltIn);
}

TEST_F(ServerAddresses, MissingInfoPlistSelectsBuiltIn) {
  EXPECT_EQ(output(program_), kBuiltIn);
}

TEST_F(ServerAddresses, DamagedInfoPlistSelectsBuiltIn) {
  putInformation("<plist version=\"1.0\"><dict><key>TovalinProductServer</key><string>http://127.0.0.1");
  EXPECT_EQ(output(program_), kBuiltIn);
}

TEST_F(ServerAddresses, AreUnchangedAfterUpdateOrRemovalOfBundle) {
  const auto update = [] { putEntries(entry("TovalinProductServer", "http://127.0.0.1:9999")); };
  const auto remove = [] { std::filesystem::remove_all(settings_test::kBundle + "/Contents/Info.plist"); };
  for (const std::function<void()>& change : {std::function<void()>(update), std::function<void()>(remove)}) {
    putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090"));
    EXPECT_EQ(outputAfter(change), "http://127.0.0.1:8090 " + kBuiltInUpload);
  }
}

TEST_F(ServerAddresses, OutsideBundleAreBuiltIn) {
  putEntries(entry("TovalinProductServer", "http://127.0.0.1:8090"));
  EXPECT_EQ(outputOutside(), kBuiltIn);
}

}  // namespace
