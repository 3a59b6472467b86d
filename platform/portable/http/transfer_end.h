#pragma once

#include <curl/curl.h>

namespace platform {

// The outcome of a libcurl transfer.
struct TransferEnd {
  CURLcode result = CURLE_OK;
  bool headIsWhole = false;  // the last request's head is complete; a redirect's head does not count
  long status = 0;
  curl_off_t announcedSize = -1;  // of the body, in bytes as received; -1 if the server did not announce it
  curl_off_t receivedSize = 0;
};

// Returns whether a complete reply was received, whatever its status. Thread-safe.
[[nodiscard]] bool isWholeReply(const TransferEnd& end);

}  // namespace platform
