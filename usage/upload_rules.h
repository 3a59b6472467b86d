#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <string_view>

#include "platform/url_request.h"

// The upload decisions of one tick of the one-minute timer.
struct UploadTick {
  bool dateChanged =
      false;               // the day of the month differs from the stored time's; the current time is stored
  bool passIsDue = false;  // run an upload pass now
  bool operator==(const UploadTick&) const = default;
};

// Computes the decisions of a tick. A pass is due when the minute of the clock equals the second at which the
// date change was detected, so that installations spread their uploads over the first hour of the day. Only
// the day of the month is compared. A pass missed during sleep is due again one hour later. Thread-safe.
[[nodiscard]] UploadTick uploadTick(const std::tm& stored, const std::tm& now, bool uploadIsWaiting);

// Returns the upload URL, always plain HTTP. `origin` is that of the product server or of the test upload
// server, as in "https://www.tovalin.example". Thread-safe.
[[nodiscard]] std::string uploadAddress(std::string_view origin);

// A multipart form (RFC 7578) with one file: the request header and the bytes before and after the file's
// contents. The server's parser expects the line break before the first delimiter. Thread-safe, like all
// functions here.
[[nodiscard]] std::string uploadContentType();
[[nodiscard]] std::string uploadBodyHead();  // 177 bytes
[[nodiscard]] std::string uploadBodyTail();  // 64 bytes

// The bytes around the file's contents. Must outlive a request made with it.
struct UploadForm {
  std::string head = uploadBodyHead();
  std::string tail = uploadBodyTail();
};

// Returns a request that sends `contents` to the server at `origin`. It refers to `form` and `contents`.
// Redirects are followed over plain HTTP only.
[[nodiscard]] platform::UrlRequest uploadRequest(std::string_view origin, const UploadForm& form,
                                                 std::span<const char> contents);

// Returns whether `text` is valid UTF-8, in which case a reply counts as received; an empty one is valid.
// Overlong forms, surrogates and values beyond U+10FFFF are invalid.
[[nodiscard]] bool isUtf8(std::string_view text);
