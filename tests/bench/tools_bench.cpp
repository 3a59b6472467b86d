// Measures tvldump on a fleet's uploads against a plain read of the same bytes, and the simulation of a day
// by fleet.

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/file_descriptor.h"
#include "tests/bench/pairs.h"
#include "tests/harness/processes/child_process.h"
#include "usage/record_bytes.h"

namespace {

namespace fs = std::filesystem;
constexpr int pairs = 5;
constexpr std::size_t sizeOfLargeFile = 100'000'000;
constexpr int smallFiles = 20'000;
constexpr const char* folder = "/tmp/days";

// Returns the records of a day with four devices and 40 transfers, 15 bytes each on average.
std::string recordsOfADay(const std::tm& time) {
  const std::vector<TransferEntry> entries(
      40, {1, std::string_view("\x10\x32\x54\x06\0\0\0\0", record_format::sizeFieldWidth), "jpg"});
  std::string bytes = startRecord("1.0.0", time);
  for (int i = 0; i < 4; ++i) bytes += deviceEventRecord(3, time, "iDevice1");
  return bytes + transferRecords(entries) + quitRecord(time);
}

void write(const std::string& path, std::size_t size) {
  std::tm time{};
  time.tm_year = 124;
  time.tm_mday = 7;
  std::string bytes = headerBytes(time, std::string(36, '0'), 68, "1.0.0");
  const std::string records = recordsOfADay(time);
  do bytes += records;
  while (bytes.size() < size);
  if (!std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
    bench::giveUp("cannot write " + path);
}

// Returns CPU time, so that other programs on the machine have less influence; the tools do not wait.
double secondsUsed(int who) {
  rusage used{};
  ::getrusage(who, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

double secondsOf(const std::vector<std::string>& command) {
  test_support::ChildOptions quiet;
  quiet.output = test_support::Redirection::null();
  test_support::ChildProcess child;
  const double before = secondsUsed(RUSAGE_CHILDREN);
  if (!child.start(command, quiet) ||
      child.wait(std::chrono::minutes(5)) != test_support::ExitStatus{.code = 0})
    bench::giveUp(command.front() + " failed");
  return secondsUsed(RUSAGE_CHILDREN) - before;
}

void readPlainly(const std::string& path, std::vector<char>& buffer) {
  const platform::FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!file.valid()) bench::giveUp("cannot open " + path);
  while (::read(file.get(), buffer.data(), buffer.size()) > 0) continue;
}

double secondsOfPlainRead(const std::vector<std::string>& paths) {
  std::vector<char> buffer(std::size_t{1} << 16);
  const double before = secondsUsed(RUSAGE_SELF);
  for (const std::string& path : paths) readPlainly(path, buffer);
  return secondsUsed(RUSAGE_SELF) - before;
}

void measureDump(const std::string& what, const std::vector<std::string>& paths) {
  double megabytes = 0;
  for (const std::string& path : paths) megabytes += static_cast<double>(fs::file_size(path)) / 1e6;
  std::vector<std::string> command{TOVALIN_TVLDUMP, "--lines"};
  command.insert(command.end(), paths.begin(), paths.end());
  bench::print({.what = what,
                .unit = "MB/s",
                .pairs = bench::runPairs(
                    pairs, [&] { return megabytes / secondsOf(command); },
                    [&] { return megabytes / secondsOfPlainRead(paths); })});
}

std::vector<std::string> manyPaths() {
  std::vector<std::string> paths;
  for (int i = 0; i < smallFiles; ++i) {
    paths.push_back(std::string(folder) + "/" + std::to_string(i) + ".dat");
    write(paths.back(), 0);
  }
  return paths;
}

}  // namespace

int main() {
  fs::create_directories(folder);
  const std::string large = std::string(folder) + "/large.dat";
  write(large, sizeOfLargeFile);
  measureDump("tvldump --lines, a file of 100 MB, beside reading it", {large});
  fs::remove(large);
  measureDump("tvldump --lines, 20,000 days of 808 bytes", manyPaths());
  bench::print({.what = "fleet, a day of a million installations",
                .unit = "s",
                .pairs = bench::runPairs(
                    3,
                    [] {
                      return secondsOf({TOVALIN_FLEET, "--installations", "1000000"});
                    },
                    [] { return 0.0; }),
                .hasReference = false});
}
