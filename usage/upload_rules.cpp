#include "usage/upload_rules.h"

#include <utf8.h>

namespace {

// Frozen, like the rest of the form: doc/compatibility.md.
constexpr std::string_view boundary = "---------------------------14737809831466499882746641449";
constexpr std::string_view uploadPath = "/product/nimba/userlog/postdata.php";

std::string delimiter() {
  return "\r\n--" + std::string(boundary);
}

}  // namespace

UploadTick uploadTick(const std::tm& stored, const std::tm& now, bool uploadIsWaiting) {
  UploadTick tick;
  tick.dateChanged = now.tm_mday != stored.tm_mday;
  const int passMinute = tick.dateChanged ? now.tm_sec : stored.tm_sec;
  tick.passIsDue = (uploadIsWaiting || tick.dateChanged) && passMinute == now.tm_min;
  return tick;
}

std::string uploadAddress(std::string_view origin) {
  const auto scheme = origin.find("://");
  const auto host = scheme == std::string_view::npos ? origin : origin.substr(scheme + 3);
  return "http://" + std::string(host) + std::string(uploadPath);
}

std::string uploadContentType() {
  return "Content-Type: multipart/form-data; boundary=" + std::string(boundary);
}

std::string uploadBodyHead() {
  return delimiter() +
         "\r\nContent-Disposition: form-data; name=\"userdata\"; filename=\"Tovalin.dat\"\r\n"
         "Content-Type: application/octet-stream\r\n\r\n";
}

std::string uploadBodyTail() {
  return delimiter() + "--\r\n";
}

platform::UrlRequest uploadRequest(std::string_view origin, const UploadForm& form,
                                   std::span<const char> contents) {
  platform::UrlRequest request;
  request.url = uploadAddress(origin);
  request.method = "POST";
  request.headers = {uploadContentType()};
  request.body = {form.head, contents, form.tail};
  request.redirectSchemes = "http";
  return request;
}

bool isUtf8(std::string_view text) {
  return utf8::is_valid(text.begin(), text.end());
}
