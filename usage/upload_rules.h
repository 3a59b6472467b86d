#pragma once

#include <cstdint>
#include <ctime>
#include <span>
#include <string>
#include <string_view>

#include "platform/url_request.h"

// What a tick of the one-minute timer does about the upload of finished days.
struct UploadTick {
  bool dateChanged = false;  // another day of the month than the stored time's: the tick's time is stored
  bool passIsDue = false;    // an upload pass runs now
  bool operator==(const UploadTick&) const = default;
};

// A pass waits until the minute of the clock equals the second at which the date was seen to change, so that
// installations spread their uploads over the first hour of the day. Only the day of the month is compared. A
// minute that was slept through comes again an hour later. Pure; any thread.
[[nodiscard]] UploadTick uploadTick(const std::tm& stored, const std::tm& now, bool uploadIsWaiting);

// Where uploads go: `origin` is the product server's, or the test upload server's, as in
// "https://www.tovalin.example". Always over plain HTTP. Pure; any thread.
[[nodiscard]] std::string uploadAddress(std::string_view origin);

// A form of RFC 7578 with one file in it: the header's line, and what stands before and behind the file's
// bytes. The line end before the first delimiter is meant: the server's parser knows it. Pure; any thread, as
// all here.
[[nodiscard]] std::string uploadContentType();
[[nodiscard]] std::string uploadBodyHead();  // 177 bytes
[[nodiscard]] std::string uploadBodyTail();  // 64 bytes

// What stands around the file's bytes, for as long as a request with them lives.
struct UploadForm {
  std::string head = uploadBodyHead();
  std::string tail = uploadBodyTail();
};

// The request that sends `contents` to the server at `origin`. It points into `form` and `contents`. A
// redirect is followed over plain HTTP alone.
[[nodiscard]] platform::UrlRequest uploadRequest(std::string_view origin, const UploadForm& form,
                                                 std::span<const char> contents);

// Whether a reply counts as received: its text is UTF-8, an empty one included. Overlong forms, surrogates
// and anything beyond U+10FFFF are none.
[[nodiscard]] bool isUtf8(std::string_view text);
