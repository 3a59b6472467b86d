#include "tests/tools/productserver_fixture.h"

#include <filesystem>
#include <fstream>

#include "tests/tools/tool_process.h"

namespace tools_test {

namespace fs = std::filesystem;

void ProductServer::SetUp() {
  fs::create_directories(std::string(kFolder) + "/sub");
  fs::create_directories("/tmp/served_not");
  write("/tmp/secret.txt", "secret");
  write("/tmp/served_not/secret.txt", "secret");
  write(std::string(kFolder) + "/a.xml", "<a/>\n");
  start(kFolder);
}

void ProductServer::TearDown() {
  server_ = {};
  for (const char* const path : {kFolder, kUploads, "/tmp/served_not", "/tmp/secret.txt"})
    fs::remove_all(path);
}

void ProductServer::write(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
}

void ProductServer::start(const std::string& folder, const std::vector<std::string>& options) {
  std::vector<std::string> command = {toolPath("productserver"), "--port", "0", folder};
  command.insert(command.end(), options.begin(), options.end());
  ASSERT_TRUE(server_.start(command));
  const std::string line = server_.readLine().value_or("");
  const std::string start = "listening on http://127.0.0.1:";
  ASSERT_TRUE(line.starts_with(start)) << line;
  port_ = std::stoi(line.substr(start.size()));
  client_.emplace("127.0.0.1", port_);
  client_->set_url_encode(false);
}

int ProductServer::statusOf(const std::string& path) {
  const httplib::Result result = client_->Get(path);
  return result ? result->status : -1;
}

std::string ProductServer::bodyOf(const std::string& path) {
  const httplib::Result result = client_->Get(path);
  return result ? result->body : "no answer";
}

std::string ProductServer::typeOf(const std::string& name) {
  write(std::string(kFolder) + "/" + name, "x");
  const httplib::Result result = client_->Get("/" + name);
  return result ? result->get_header_value("Content-Type") : "no answer";
}

void ProductServer::setFault(const std::string& path, const std::string& name) {
  ASSERT_EQ(statusOf("/_control/fault?path=" + path + "&name=" + name), 200);
  ASSERT_TRUE(server_.readLine());
}

std::vector<std::string> ProductServer::linesUpTo(const std::string& text) {
  std::vector<std::string> lines;
  while (const auto line = server_.readLine()) {
    lines.push_back(*line);
    if (line->find(text) != std::string::npos) break;
  }
  return lines;
}

}  // namespace tools_test
