// Which servers a page reaches.
#include <gmock/gmock.h>

#include <regex>

#include "tests/platform/linux/helpers/web_view_helper.h"

namespace web_view_test {
namespace {

using testing::IsEmpty;

// Ways in which a page may ask another server for something, with its port in place of PORT.
class WebViewOtherServer : public WebViewHelper, public testing::WithParamInterface<const char*> {
 protected:
  [[nodiscard]] std::string script() const {
    const std::string address = other_.address("");
    return std::regex_replace(std::string(GetParam()), std::regex(":PORT"),
                              address.substr(address.rfind(':')));
  }

  PageServer other_;
};

TEST_P(WebViewOtherServer, OnLoopbackIsNotAsked) {
  server_.redirect("/redirect", other_.address("/page"));
  startWithScript(script());
  helper_.closeInput();
  EXPECT_TRUE(helper_.wait());
  EXPECT_THAT(other_.asked(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Ways, WebViewOtherServer,
    testing::Values(
        "fetch('http://127.0.0.1:PORT/page', {mode: 'no-cors'});",
        "fetch('http://localhost:PORT/page', {mode: 'no-cors'});",
        "new Image().src = 'http://127.0.0.1:PORT/page';",
        "navigator.sendBeacon('http://127.0.0.1:PORT/page', 'x');",
        "new WebSocket('ws://127.0.0.1:PORT/page');", "location.href = 'http://127.0.0.1:PORT/page';",
        "fetch('/redirect', {mode: 'no-cors'});",
        "const f = document.createElement('iframe'); f.src = 'http://127.0.0.1:PORT/page';"
        "document.documentElement.append(f);",
        "const l = document.createElement('link'); l.rel = 'preconnect'; l.href = 'http://127.0.0.1:PORT/';"
        "document.head.append(l); fetch('/redirect', {mode: 'no-cors'});"));

TEST_F(WebViewHelper, PagesOwnServerIsAskedUnderEachNameThatAddressesGive) {
  const std::string port = server_.address("").substr(server_.address("").rfind(':'));
  server_.put("/page", "<script>fetch('/script?' + location.hostname)</script>");
  start();
  ASSERT_TRUE(helper_.writeLine("http://127.0.0.1" + port + "/page"));
  EXPECT_TRUE(server_.waitFor("/script?127.0.0.1"));
  ASSERT_TRUE(helper_.writeLine("HTTP://LocalHost" + port + "/page"));
  EXPECT_TRUE(server_.waitFor("/script?localhost"));
}

}  // namespace
}  // namespace web_view_test
