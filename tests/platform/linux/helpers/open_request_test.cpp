#include "platform/linux/helpers/open_request.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>

namespace helpers {
namespace {

std::string reasonAgainst(const Arguments& arguments) {
  const OpenRequest request = parseOpenRequest(arguments);
  const auto* refusal = std::get_if<Refusal>(&request);
  return refusal == nullptr ? std::string() : refusal->reason;
}

TEST(OpenRequest, AcceptsBundleWithArguments) {
  const OpenRequest request = parseOpenRequest({"-a", "/x/A B.app", "--args", "-title", "a b", "", "--args"});
  const auto* bundle = std::get_if<OpenBundle>(&request);
  ASSERT_NE(nullptr, bundle);
  EXPECT_EQ("/x/A B.app", bundle->path);
  EXPECT_EQ((Arguments{"-title", "a b", "", "--args"}), bundle->arguments);
}

TEST(OpenRequest, HelpAfterArgsIsPassedToProgram) {
  const OpenRequest request = parseOpenRequest({"-a", "/A.app", "--args", "--help"});
  const auto* bundle = std::get_if<OpenBundle>(&request);
  ASSERT_NE(nullptr, bundle);
  EXPECT_EQ(Arguments{"--help"}, bundle->arguments);
  EXPECT_TRUE(std::holds_alternative<ShowUsage>(parseOpenRequest({"--help"})));
}

TEST(OpenRequest, AcceptsBundleWithoutArguments) {
  for (const Arguments& arguments : {Arguments{"-a", "/A.app"}, Arguments{"-a", "/A.app", "--args"},
                                     Arguments{"/A.app"}, Arguments{"A.app/"}}) {
    const OpenRequest request = parseOpenRequest(arguments);
    const auto* bundle = std::get_if<OpenBundle>(&request);
    ASSERT_NE(nullptr, bundle);
    EXPECT_TRUE(bundle->arguments.empty());
  }
}

TEST(OpenRequest, UrlEndingInAppIsNoBundle) {
  for (const char* url : {"https://example.app", "https://example.app/", "mailto:a@example.app", "x-a+b.c:d",
                          "file:///x/A.app"}) {
    const OpenRequest request = parseOpenRequest({url});
    const auto* found = std::get_if<OpenUrl>(&request);
    ASSERT_NE(nullptr, found) << url;
    EXPECT_EQ(url, found->url);
  }
}

TEST(OpenRequest, PathWithColonIsNoUrl) {
  for (const char* path : {"/a:b", "./a:b", ":a", "1a:b", "a b:c", "/x/a.txt", ".app", "/x/.app"}) {
    EXPECT_TRUE(std::holds_alternative<OpenFile>(parseOpenRequest({path}))) << path;
  }
}

TEST(OpenRequest, RefusalNamesProblem) {
  const struct {
    Arguments arguments;
    std::string_view named;
  } cases[] = {
      {{}, "nothing to open"},
      {{""}, "nothing to open"},
      {{"-x"}, "\"-x\""},
      {{"--version"}, "\"--version\""},
      {{"-"}, "\"-\""},
      {{"-A.app"}, "\"-A.app\""},
      {{"https://a.example", "https://b.example"}, "\"https://b.example\""},
      {{"/A.app", "--args"}, "\"--args\""},
      {{"-a"}, "bundle is missing"},
      {{"-a", ""}, "not a bundle"},
      {{"-a", "--args", "x"}, "\"--args\""},
      {{"-a", "-x.app"}, "\"-x.app\""},
      {{"-a", "Browser"}, "\"Browser\""},
      {{"-a", "/x/.app"}, "not a bundle"},
      {{"-a", "/A.app", "file.txt", "--args"}, "\"file.txt\""},
  };
  for (const auto& [arguments, named] : cases) {
    EXPECT_NE(std::string::npos, reasonAgainst(arguments).find(named)) << named << reasonAgainst(arguments);
  }
}

TEST(BundleName, IsLastComponentWithoutExtension) {
  const struct {
    std::string_view path;
    std::string_view name;
  } cases[] = {{"/x/A B.app", "A B"},
               {"A.app", "A"},
               {"/x/A.app///", "A"},
               {"/A.app.app", "A.app"},
               {"/x/A.APP", ""},
               {"/x/.app", ""},
               {".app/", ""},
               {"/x/A.app/Contents", ""},
               {"/", ""},
               {"", ""},
               {"/x/app", ""},
               {"/A.app/.", ""}};
  for (const auto& [path, name] : cases) EXPECT_EQ(name, bundleName(path)) << path;
}

}  // namespace
}  // namespace helpers
