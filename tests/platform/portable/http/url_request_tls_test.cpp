#include <gmock/gmock.h>
#include <sys/mount.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "tests/harness/processes/child_process.h"
#include "tests/platform/portable/http/url_request_support.h"

namespace {

using platform::sendSynchronousRequest;
using test_support::httpReply;
using test_support::RawHttpServer;
using test_support::requestFor;
using testing::Optional;

const std::string folder = "/tmp/tls";

// Creates the certificate NAME.pem and its key NAME.key in `folder`, self-signed unless `options` name a
// signing authority. Returns false on failure.
bool makeCertificate(const std::string& name, const std::string& subject, const std::string& options) {
  const std::string command =
      "cd " + folder +
      " && openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -keyout " + name +
      ".key -out " + name + ".pem -subj /CN=" + subject + " " + options + " 2>/dev/null";
  return std::system(command.c_str()) == 0;
}

bool makeCertificates() {
  std::filesystem::create_directories(folder);
  return makeCertificate("authority", "Authority", "") &&
         makeCertificate("server", "localhost",
                         "-addext subjectAltName=DNS:localhost -addext basicConstraints=CA:FALSE "
                         "-CA authority.pem -CAkey authority.key");
}

// Bind-mounts the test authority over the system's CA bundle for the lifetime of the object.
class TrustedAuthority {
 public:
  TrustedAuthority()
      : mounted_(::mount((folder + "/authority.pem").c_str(), place, nullptr, MS_BIND, nullptr) == 0) {}
  TrustedAuthority(const TrustedAuthority&) = delete;
  TrustedAuthority& operator=(const TrustedAuthority&) = delete;
  ~TrustedAuthority() {
    if (mounted_) ::umount2(place, MNT_DETACH);
  }
  [[nodiscard]] bool valid() const { return mounted_; }

 private:
  static constexpr const char* place = "/etc/ssl/certs/ca-certificates.crt";
  bool mounted_;
};

// An openssl s_server with a certificate for "localhost" that serves /page.
class UrlRequestTls : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    ASSERT_TRUE(makeCertificates());
    std::ofstream(folder + "/page") << "behind the lock";
  }

  void SetUp() override {
    test_support::ChildOptions options;
    options.workingDirectory = folder;
    options.error = test_support::Redirection::null();
    ASSERT_TRUE(server_.start({"openssl", "s_server", "-accept", "127.0.0.1:0", "-cert", "server.pem", "-key",
                               "server.key", "-WWW"},
                              options));
    while (port_.empty()) {
      const auto line = server_.readLine();
      ASSERT_TRUE(line) << "no server";
      if (line->starts_with("ACCEPT ")) port_ = line->substr(line->rfind(':') + 1);
    }
  }

  [[nodiscard]] std::string page(const std::string& host) const {
    return "https://" + host + ":" + port_ + "/page";
  }

  test_support::ChildProcess server_;
  std::string port_;
};

TEST_F(UrlRequestTls, ReplyOfTrustedServerIsReturned) {
  const TrustedAuthority authority;
  ASSERT_TRUE(authority.valid());
  EXPECT_THAT(sendSynchronousRequest(requestFor(page("localhost"))),
              Optional(std::string("behind the lock")));
}

TEST_F(UrlRequestTls, UnknownAuthorityIsNoReply) {
  EXPECT_EQ(sendSynchronousRequest(requestFor(page("localhost"))), std::nullopt);
}

TEST_F(UrlRequestTls, CertificateForOtherHostIsNoReply) {
  const TrustedAuthority authority;
  ASSERT_TRUE(authority.valid());
  EXPECT_EQ(sendSynchronousRequest(requestFor(page("127.0.0.1"))), std::nullopt);
}

TEST_F(UrlRequestTls, RedirectFromHttpToTrustedServerIsFollowed) {
  const TrustedAuthority authority;
  ASSERT_TRUE(authority.valid());
  const RawHttpServer plain(
      RawHttpServer::answer(httpReply("moved", "Location: " + page("localhost") + "\r\n", "302 Found")));
  EXPECT_THAT(sendSynchronousRequest(requestFor(plain.url())), Optional(std::string("behind the lock")));
}

TEST_F(UrlRequestTls, RedirectFromHttpToUnknownAuthorityIsNoReply) {
  const RawHttpServer plain(
      RawHttpServer::answer(httpReply("moved", "Location: " + page("localhost") + "\r\n", "302 Found")));
  EXPECT_EQ(sendSynchronousRequest(requestFor(plain.url())), std::nullopt);
}

}  // namespace
