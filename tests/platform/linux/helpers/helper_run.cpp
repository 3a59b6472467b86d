#include "tests/platform/linux/helpers/helper_run.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

#include "tests/harness/processes/file_contents.h"

namespace helper_test {

namespace fs = std::filesystem;
using test_support::contentsOf;

Ended run(const std::vector<std::string>& argv, test_support::ChildOptions options) {
  options.environment.emplace("TOVALIN_ORIGINAL_PATH", std::nullopt);
  options.error = test_support::Redirection::pipe();
  test_support::ChildProcess child;
  if (!child.start(argv, options)) return {};
  const auto status = child.wait();
  return {status ? status->code : std::nullopt, child.takeOutput(), child.takeErrorOutput()};
}

std::string helper(const std::string& name) {
  return std::string(HELPER_FOLDER) + "/" + name;
}

std::string testProgram(const std::string& name) {
  return std::string(PROGRAM_FOLDER) + "/" + name;
}

std::string newFolder() {
  std::string pattern = "/tmp/with space.XXXXXX";
  return ::mkdtemp(pattern.data()) == nullptr ? std::string() : pattern;
}

void writeFile(const std::string& path, const std::string& content) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path) << content;
}

void writeProgram(const std::string& path, const std::string& script) {
  writeFile(path, "#!/bin/sh\n" + script + "\n");
  fs::permissions(path, fs::perms::owner_all);
}

void placeReporter(const std::string& path) {
  fs::create_directories(fs::path(path).parent_path());
  fs::create_symlink(testProgram("reporting_program"), path);
}

std::vector<std::string> awaitReport(const std::string& path) {
  if (!test_support::waitUntil([&] { return fs::exists(path); })) return {};
  std::vector<std::string> fields;
  std::ifstream report(path, std::ios::binary);
  for (std::string field; std::getline(report, field, '\0');) fields.push_back(field);
  return fields;
}

std::vector<std::string> fieldsAfter(const std::vector<std::string>& fields, const std::string& beginning) {
  std::vector<std::string> found;
  for (const std::string& field : fields) {
    if (field.starts_with(beginning)) found.push_back(field.substr(beginning.size()));
  }
  return found;
}

std::string awaitContent(const std::string& path) {
  if (!test_support::waitUntil([&] { return contentsOf(path).ends_with('\n'); })) return {};
  std::string content = contentsOf(path);
  content.pop_back();
  return content;
}

bool isAlive(const std::string& pid) {
  const std::string status = contentsOf("/proc/" + pid + "/status");
  return !status.empty() && status.find("State:\tZ") == std::string::npos;
}

}  // namespace helper_test
