#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "tests/harness/processes/child_process.h"

namespace settings_test {

inline const std::string kBundle = "/tmp/bundles/My Agent.app";

// Runs a probe inside a bundle; the probe prints what it found there on one line.
class BundleProbe : public testing::Test {
 protected:
  // `probe` is the path of the built program.
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
  // Returns the first line that `program` prints.
  static std::string output(const std::string& program) {
    test_support::ChildProcess probe;
    if (!probe.start({program})) return "did not start";
    return probe.readLine().value_or("no output");
  }
  // Starts the probe in the bundle, runs `change` and returns the line that the probe prints afterwards.
  template <typename Change>
  [[nodiscard]] std::string outputAfter(Change change) const {
    test_support::ChildProcess probe;
    test_support::ChildOptions options;
    options.input = test_support::Redirection::pipe();
    if (!probe.start({program_}, options) || !probe.readLine()) return "did not start";
    change();
    return probe.writeLine("again") ? probe.readLine().value_or("no output") : "has ended";
  }
  // Returns the line that a copy of the probe outside a bundle prints.
  [[nodiscard]] std::string outputOutside() const {
    std::filesystem::copy_file(probe_, "/tmp/bundles/probe");
    return output("/tmp/bundles/probe");
  }

  const std::string program_ = kBundle + "/Contents/MacOS/probe";

 private:
  const std::string probe_;
};

}  // namespace settings_test
