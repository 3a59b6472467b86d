// Tests the requests of pages that the helper refuses.
#include <gmock/gmock.h>

#include <atomic>

#include "tests/harness/desktop/x_windows.h"
#include "tests/harness/servers/raw_http_server.h"
#include "tests/platform/linux/helpers/web_view_helper.h"

namespace web_view_test {
namespace {

using testing::IsEmpty;

class WebViewRefusal : public WebViewHelper {
 protected:
  // Expects that the helper still loads pages and shows no window.
  void expectNothingHappened() {
    EXPECT_TRUE(stillLoads());
    EXPECT_THAT(test_support::windowsOn(display_->name()), IsEmpty());
  }
};

TEST_F(WebViewRefusal, DialogsDoNotBlockScript) {
  startWithScript("alert(1); fetch('/said-' + confirm(2) + '-' + prompt(3, 'x'));");
  EXPECT_TRUE(server_.waitFor("/said-false-null"));
  expectNothingHappened();
}

TEST_F(WebViewRefusal, BeforeUnloadHandlerIsIgnored) {
  startWithScript(
      "onbeforeunload = event => { event.preventDefault(); return event.returnValue = 'stay'; };");
  expectNothingHappened();
}

TEST_F(WebViewRefusal, NewWindowIsNotOpened) {
  startWithScript("const other = window.open('/other'); fetch('/got-' + other);");
  EXPECT_TRUE(server_.waitFor("/got-null"));
  expectNothingHappened();
  EXPECT_FALSE(server_.wasAsked("/other"));
}

TEST_F(WebViewRefusal, LinkToNewWindowIsNotFollowed) {
  startWithScript(
      "const link = document.createElement('a'); link.target = '_blank'; link.href = '/other';"
      "document.documentElement.append(link); link.click(); fetch('/clicked');");
  EXPECT_TRUE(server_.waitFor("/clicked"));
  expectNothingHappened();
  EXPECT_FALSE(server_.wasAsked("/other"));
}

// Each download must be cancelled before its answer, not only when the file cannot be created. A cancellation
// may precede the request.
TEST_F(WebViewRefusal, DownloadIsCancelledBeforeAnswer) {
  std::atomic<int> unanswered = 0;
  std::atomic<bool> clicked = false;
  const test_support::RawHttpServer server([&](test_support::RawConnection& connection) {
    const std::string head = connection.readHead();
    if (head.starts_with("GET /download.bin ")) {
      ++unanswered;
      if (connection.waitForEnd(std::chrono::minutes(5))) --unanswered;
      return;
    }
    if (head.starts_with("GET /clicked ")) clicked = true;
    connection.send(test_support::httpReply(
        "<a download='saved.bin' href='/download.bin'></a><script>let clicks = 0; setInterval(() => {"
        "document.querySelector('a').click(); if (++clicks == 10) fetch('/clicked'); }, 100)</script>",
        "Content-Type: text/html\r\nConnection: close\r\n"));
  });
  start();
  ASSERT_TRUE(helper_.writeLine(server.url("/page")));
  EXPECT_TRUE(test_support::waitUntil([&] { return clicked.load(); }));
  EXPECT_TRUE(test_support::waitUntil([&] { return unanswered == 0; }));
  expectNothingHappened();
}

TEST_F(WebViewRefusal, DownloadIsNotStored) {
  server_.putDownload("/download.bin");
  const auto before = filesBelow("/tmp");
  startWithScript(
      "const link = document.createElement('a'); link.download = 'saved.bin'; link.href = '/download.bin';"
      "document.documentElement.append(link); link.click(); setTimeout(() => fetch('/clicked'), 500);");
  EXPECT_TRUE(server_.waitFor("/clicked"));
  load("/download.bin");
  EXPECT_TRUE(server_.waitFor("/download.bin"));
  expectNothingHappened();
  helper_.terminate();
  EXPECT_TRUE(helper_.wait());
  EXPECT_EQ(filesBelow("/tmp"), before);
}

// Scripts that try to open a local page, which would make a request.
class WebViewLocalPage : public WebViewHelper, public testing::WithParamInterface<const char*> {};

TEST_P(WebViewLocalPage, IsNotOpened) {
  helper_test::writeFile("/tmp/local.html",
                         "<script>new Image().src = '" + server_.address("/local") + "'</script>");
  server_.redirect("/redirect", "file:///tmp/local.html");
  startWithScript(GetParam());
  helper_.closeInput();
  EXPECT_TRUE(helper_.wait());
  EXPECT_FALSE(server_.wasAsked("/local"));
}

INSTANTIATE_TEST_SUITE_P(
    Ways, WebViewLocalPage,
    testing::Values("location.href = 'file:///tmp/local.html';", "location.href = '/redirect';",
                    "const f = document.createElement('iframe');"
                    "f.src = 'file:///tmp/local.html'; document.documentElement.append(f);",
                    "location.href = 'data:text/html,<script>new Image().src = \"' +"
                    "location.origin + '/local\"<' + '/script>';",
                    // The engine itself would open these two.
                    "const f = document.createElement('iframe');"
                    "f.src = 'data:text/html,<script>new Image().src = \"' + location.origin +"
                    "'/local\"<' + '/script>'; document.documentElement.append(f);",
                    "location.href = URL.createObjectURL(new Blob("
                    "['<script>new Image().src = \"' + location.origin + '/local\"<' + '/script>'],"
                    "{type: 'text/html'}));"));

TEST_F(WebViewRefusal, PermissionsAreDenied) {
  startWithScript("Notification.requestPermission().then(answer => fetch('/' + answer));");
  EXPECT_TRUE(server_.waitFor("/denied"));
  expectNothingHappened();
}

TEST_F(WebViewRefusal, PrintReturnsWithoutPrinting) {
  startWithScript("setTimeout(() => { window.print(); fetch('/printed'); }, 100);");
  EXPECT_TRUE(server_.waitFor("/printed"));
  expectNothingHappened();
}

TEST_F(WebViewRefusal, FrameFilledByScriptIsAllowed) {
  startWithScript(
      "const f = document.createElement('iframe'); document.documentElement.append(f);"
      "f.contentWindow.fetch('/from-frame');");
  EXPECT_TRUE(server_.waitFor("/from-frame"));
  expectNothingHappened();
}

}  // namespace
}  // namespace web_view_test
