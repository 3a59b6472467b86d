#include "platform/macos/system/bracket_escapes.h"

#include <gtest/gtest.h>

#include <string>

#include "app/link_addresses.h"

namespace {

using platform::withEscapedBrackets;

TEST(BracketEscapes, ReplacesBracketsAfterAuthorityOnly) {
  struct Case {
    const char* url;
    const char* escaped;
  };
  for (const Case& each : {
           Case{"", ""},
           Case{"http://a.example", "http://a.example"},
           Case{"http://a.example/b?c=[d]%20e", "http://a.example/b?c=%5Bd%5D%20e"},
           Case{"http://a.example/[b]#[c]", "http://a.example/%5Bb%5D#%5Bc%5D"},
           Case{"http://a.example?[b]", "http://a.example?%5Bb%5D"},
           Case{"http://a.example#[b]", "http://a.example#%5Bb%5D"},
           Case{"http://a.example/?b=]//[c]", "http://a.example/?b=%5D//%5Bc%5D"},
           Case{"http://[::1]", "http://[::1]"},
           Case{"http://[::1]:8090/?a=[b]", "http://[::1]:8090/?a=%5Bb%5D"},
           Case{"https://u:p@[::1]/%5Ba%5D", "https://u:p@[::1]/%5Ba%5D"},
           Case{"http:/a?b=//[c]", "http:/a?b=//%5Bc%5D"},
           Case{"mailto:a?subject=[b]", "mailto:a?subject=%5Bb%5D"},
           Case{"//[::1]/[a]", "//[::1]/%5Ba%5D"},
           Case{"a/[b]://[c]", "a/%5Bb%5D://%5Bc%5D"},
       })
    EXPECT_EQ(withEscapedBrackets(each.url), each.escaped) << each.url;
}

TEST(BracketEscapes, TweetAddressHasNoBracketsLeft) {
  const std::string address = withEscapedBrackets(tweetPage("https://www.tovalin.example"));
  EXPECT_TRUE(address.starts_with("https://twitter.com/intent/tweet?text=%5BTovalin%5D%20Easily%20manage"));
  EXPECT_EQ(address.find_first_of("[]"), std::string::npos);
}

}  // namespace
