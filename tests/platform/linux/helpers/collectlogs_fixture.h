#pragma once

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/harness/processes/file_contents.h"
#include "tests/platform/linux/helpers/helper_run.h"

namespace helper_test {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using test_support::contentsOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

inline std::set<std::string> namesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

constexpr uid_t kAnotherUser = 65533;

// Runs the helper with a source and a target folder.
class CollectLogs : public testing::Test {
 protected:
  void SetUp() override {
    for (const std::string& folder : {source_, target_}) fs::create_directory(folder);
  }
  void TearDown() override { fs::remove_all(root_); }

  [[nodiscard]] Ended collect(const std::vector<std::string>& arguments) const {
    std::vector<std::string> argv{helper("collectlogs")};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    return run(argv);
  }
  [[nodiscard]] Ended copy(const std::string& limit = "1000", const std::string& how = "whole") const {
    return collect({how, limit, source_, "*.log", target_});
  }
  void put(const std::string& name, const std::string& text = "text") const {
    writeFile(source_ + "/" + name, text);
  }
  // `age` sets the modification time, by which the helper orders files.
  void put(const std::string& name, const std::string& text, std::chrono::seconds age) const {
    put(name, text);
    fs::last_write_time(source_ + "/" + name, fs::file_time_type::clock::now() - age);
  }
  [[nodiscard]] std::string copied(const std::string& name) const { return contentsOf(target_ + "/" + name); }

  const std::string root_ = newFolder();
  const std::string source_ = root_ + "/source";
  const std::string target_ = root_ + "/target";
};

}  // namespace helper_test
