#include <unistd.h>

#include "app/nimbatrayAppDelegate.h"
#include "platform/clock.h"
#include "platform/log.h"
#include "platform/url_request.h"
#include "usage/application_directory.h"
#include "usage/record_bytes.h"
#include "usage/server_addresses.h"
#include "usage/upload_files.h"
#include "usage/upload_rules.h"
#include "usage/usage_record.h"

void nimbatrayAppDelegate::TvlDataFileUploadThread() {
  bTvlDataUpload = !TvlDataFileCheck();
}

void nimbatrayAppDelegate::TvlCheckDataUpload() {
  const std::tm now = platform::currentLocalTime();
  const UploadTick tick = uploadTick(strStartTime, now, bTvlDataUpload);
  if (tick.dateChanged) {
    strStartTime = now;
    UsageFile newDay;
    static_cast<void>(TvlDataOpenFile(newDay));
    bTvlDataUpload = true;
  }
  if (tick.passIsDue && TvlDataFileCheck()) bTvlDataUpload = false;
}

bool nimbatrayAppDelegate::TvlDataFileCheck() {
  const auto folder = applicationDirectory();
  if (!folder) return true;
  const auto names = uploadCandidates(*folder);
  const std::string today = usageFileName(platform::currentLocalTime());
  std::string sent;  // the file before, when the server has it; its deletion is the next step's first act
  for (const std::string& name : names) {
    if (!sent.empty()) ::unlink(sent.c_str());
    sent.clear();
    if (name == today) continue;
    const std::string path = *folder + "/" + name;
    if (const auto contents = contentsOfFile(path); contents && sendPostRequest(*contents)) sent = path;
  }
  if (!sent.empty()) ::unlink(sent.c_str());
  return true;
}

bool nimbatrayAppDelegate::sendPostRequest(std::span<const char> contents) {
  const std::string head = uploadBodyHead();
  const std::string tail = uploadBodyTail();
  platform::UrlRequest request;
  request.url = uploadAddress(dataUploadURL == 1 ? productServer() : testUploadServer());
  request.method = "POST";
  request.headers = {uploadContentType()};
  request.body = {head, contents, tail};
  request.redirectSchemes = "http";
  const auto reply = platform::sendSynchronousRequest(request);
  const bool received = reply && isUtf8(*reply);
  platform::consoleLog(received ? *reply : "(null)");
  return received;
}
