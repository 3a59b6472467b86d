#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "tests/harness/processes/child_process.h"

namespace settings_test {

inline const std::string kBundle = "/tmp/bundles/My Agent.app";

// A program in a bundle, which tells in a line what it found there.
class BundleProbe : public testing::Test {
 protected:
  // `probe` is the program as built.
  explicit BundleProbe(std::string probe) : probe_(std::move(probe)) {}

  void SetUp() override {
    std::filesystem::create_directories(kBundle + "/Contents/MacOS");
    std::filesystem::copy_file(probe_, program_);
  }
  void TearDown() override { std::filesystem::remove_all("/tmp/bundles"); }

  static void putInformation(const std::string& text) {
    std::ofstream(kBundle + "/Contents/Info.plist", std::ios::trunc) << text;
  }
  static void putEntries(const std::string& entries) {
    putInformation("<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
  }
  // What the program in the bundle, or one elsewhere, tells.
  static std::string told(const std::string& program) {
    test_support::ChildProcess probe;
    if (!probe.start({program})) return "did not start";
    return probe.readLine().value_or("told nothing");
  }
  // What the program in the bundle, started before `change`, tells after it.
  template <typename Change>
  [[nodiscard]] std::string toldAfter(Change change) const {
    test_support::ChildProcess probe;
    test_support::ChildOptions options;
    options.input = test_support::Redirection::pipe();
    if (!probe.start({program_}, options) || !probe.readLine()) return "did not start";
    change();
    return probe.writeLine("again") ? probe.readLine().value_or("told nothing") : "has ended";
  }
  // What it tells from outside a bundle.
  [[nodiscard]] std::string toldOutside() const {
    std::filesystem::copy_file(probe_, "/tmp/bundles/probe");
    return told("/tmp/bundles/probe");
  }

  const std::string program_ = kBundle + "/Contents/MacOS/probe";

 private:
  const std::string probe_;
};

}  // namespace settings_test
