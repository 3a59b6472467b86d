// Measures an upload pass against a plain loop over libcurl's easy interface that reads, sends and deletes
// the same files, and the peak memory of the upload of a large file against the size of the file.

#include <curl/curl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "app/nimbatrayAppDelegate.h"
#include "platform/status_item.h"
#include "tests/bench/pairs.h"
#include "tests/harness/processes/child_process.h"
#include "tests/harness/processes/file_contents.h"
#include "tests/harness/processes/wait_until.h"
#include "tests/usage/server_parts.h"

namespace {

namespace fs = std::filesystem;

constexpr int files = 1000;
constexpr int pairs = 5;
constexpr std::size_t sizeOfAFile = 4096;
constexpr std::size_t sizeOfTheLargeFile = 100'000'000;
const fs::path folder = "/tmp/support/Tovalin";

// The request of the reference, written out so that none of the agent's code is in its time.
constexpr const char* path = "/product/nimba/userlog/postdata.php";
constexpr const char* contentType =
    "Content-Type: multipart/form-data; boundary=---------------------------14737809831466499882746641449";
constexpr const char* bodyHead =
    "\r\n-----------------------------14737809831466499882746641449\r\n"
    "Content-Disposition: form-data; name=\"userdata\"; filename=\"Tovalin.dat\"\r\n"
    "Content-Type: application/octet-stream\r\n\r\n";
constexpr const char* bodyTail = "\r\n-----------------------------14737809831466499882746641449--\r\n";

void writeFiles(int count, std::size_t size) {
  fs::create_directories(folder);
  for (int i = 0; i < count; ++i)
    std::ofstream(folder / (std::to_string(i) + ".dat")) << std::string(size, 'b');
}

std::size_t append(char* data, std::size_t one, std::size_t size, void* text) {
  static_cast<std::string*>(text)->append(data, one * size);
  return one * size;
}

bool sendPlainly(const std::string& address, const std::string& contents) {
  CURL* curl = curl_easy_init();
  const std::string body = bodyHead + contents + bodyTail;
  curl_slist* headers = curl_slist_append(nullptr, contentType);
  // Without this header libcurl waits 1 s for "100 Continue".
  headers = curl_slist_append(headers, "Expect:");
  std::string reply;
  curl_easy_setopt(curl, CURLOPT_URL, address.c_str());
  curl_easy_setopt(curl, CURLOPT_POSTFIELDS, body.c_str());
  curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, append);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &reply);
  const CURLcode result = curl_easy_perform(curl);
  curl_slist_free_all(headers);
  curl_easy_cleanup(curl);
  return result == CURLE_OK;
}

void plainPass(const std::string& address) {
  for (const auto& entry : fs::directory_iterator(folder)) {
    if (sendPlainly(address, test_support::contentsOf(entry.path()))) fs::remove(entry.path());
  }
}

double millisecondsOf(const std::function<void()>& pass) {
  writeFiles(files, sizeOfAFile);
  const auto begin = std::chrono::steady_clock::now();
  pass();
  const auto took = std::chrono::steady_clock::now() - begin;
  if (!fs::is_empty(folder)) std::abort();
  return std::chrono::duration<double, std::milli>(took).count();
}

// Runs the pass in a child process, so that ru_maxrss covers the pass alone.
double peakMegabytesOfOnePass(nimbatrayAppDelegate& delegate) {
  writeFiles(1, sizeOfTheLargeFile);
  const pid_t child = ::fork();
  if (child == 0) ::_exit(delegate.TvlDataFileCheck() ? 0 : 1);
  rusage used{};
  int status = 0;
  if (::wait4(child, &status, 0, &used) != child || status != 0 || !fs::is_empty(folder)) std::abort();
  return static_cast<double>(used.ru_maxrss) * 1024 / 1e6;
}

std::string startServer(test_support::ChildProcess& server) {
  fs::create_directories("/tmp/served");
  test_support::ChildOptions quiet;
  quiet.output = test_support::Redirection::null();
  if (!server.start({TOVALIN_PRODUCTSERVER, "--port", "0", "--port-file", "/tmp/port", "/tmp/served"}, quiet))
    std::abort();
  if (!test_support::waitUntil([] { return fs::exists("/tmp/port"); })) std::abort();
  std::string port;
  std::getline(std::ifstream("/tmp/port"), port);
  return "http://127.0.0.1:" + port;
}

}  // namespace

int main() {
  ::setenv("XDG_DATA_HOME", "/tmp/support", 1);
  if (std::freopen("/dev/null", "w", stderr) == nullptr) return 1;
  test_support::ChildProcess server;
  const std::string origin = startServer(server);
  record_parts::setServers(origin, origin);
  nimbatrayAppDelegate delegate;
  bench::print({.what = "memory while a file of 100 MB is uploaded",
                .unit = "MB",
                .pairs = {{peakMegabytesOfOnePass(delegate), sizeOfTheLargeFile / 1e6}}});
  curl_global_init(CURL_GLOBAL_DEFAULT);
  bench::print({.what = "upload of 1,000 files of 4 KB",
                .unit = "ms",
                .pairs = bench::runPairs(
                    pairs, [&] { return millisecondsOf([&] { delegate.TvlDataFileCheck(); }); },
                    [&] { return millisecondsOf([&] { plainPass(origin + path); }); })});
}
