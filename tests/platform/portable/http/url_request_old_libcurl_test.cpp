// Requests with a libcurl that rejects the options added after version 7.85, as an older one does that the
// agent finds at run time. The linker wraps curl_easy_setopt.

#include <curl/curl.h>
#include <gmock/gmock.h>

#include <cstdarg>

#include "tests/platform/portable/http/url_request_support.h"

namespace {

using test_support::httpReply;
using test_support::RawHttpServer;
using test_support::replyOf;
using testing::Optional;

int rejections = 0;

TEST(UrlRequestOldLibcurl, RejectedOptionForCleanupDoesNotFailRequest) {
  EXPECT_THAT(replyOf(RawHttpServer::answer(httpReply("the page"))), Optional(std::string("the page")));
  EXPECT_EQ(rejections, 1);
}

}  // namespace

extern "C" CURLcode __real_curl_easy_setopt(CURL* handle, CURLoption option, ...);
extern "C" CURLcode __wrap_curl_easy_setopt(CURL* handle, unsigned option, ...);

// Each argument is as wide as a pointer. The option's type is what an argument before "..." is promoted to.
extern "C" CURLcode __wrap_curl_easy_setopt(CURL* handle, unsigned option, ...) {
  if (option == CURLOPT_QUICK_EXIT) {
    ++rejections;
    return CURLE_UNKNOWN_OPTION;
  }
  va_list arguments;
  va_start(arguments, option);
  void* value = va_arg(arguments, void*);
  va_end(arguments);
  return __real_curl_easy_setopt(handle, static_cast<CURLoption>(option), value);
}
