#pragma once

#include <curl/curl.h>

namespace platform {

// How a transfer of libcurl's ended.
struct TransferEnd {
  CURLcode result = CURLE_OK;
  bool headIsWhole = false;  // that of the last request: a redirect's head is none of its target
  long status = 0;
  curl_off_t announcedSize = -1;  // of the body, in bytes as received; -1 if the server didn't announce it
  curl_off_t receivedSize = 0;
};

// Whether a whole reply came, whatever its status. Pure; thread-safe.
[[nodiscard]] bool isWholeReply(const TransferEnd& end);

}  // namespace platform
