#include "app/nimbatrayAppDelegate.h"
#include "platform/clock.h"
#include "platform/log.h"
#include "platform/url_request.h"
#include "usage/application_directory.h"
#include "usage/console_text.h"
#include "usage/record_bytes.h"
#include "usage/server_addresses.h"
#include "usage/upload_files.h"
#include "usage/upload_rules.h"
#include "usage/usage_record.h"

void nimbatrayAppDelegate::TvlDataFileUploadThread() {
  bTvlDataUpload = !TvlDataFileCheck();
}

void nimbatrayAppDelegate::TvlCheckDataUpload() {
  platform::noticeTimeZone();
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
  std::optional<SentFile> sent;  // the previous file, deleted at the beginning of the next step
  for (const std::string& name : names) {
    if (sent) removeSentFile(*sent);
    sent.reset();
    if (name == today) continue;
    const std::string path = *folder + "/" + name;
    const auto contents = contentsOfFile(path);
    if (contents && sendPostRequest(*contents)) sent = {path, contents->size()};
  }
  if (sent) removeSentFile(*sent);
  return true;
}

bool nimbatrayAppDelegate::sendPostRequest(std::span<const char> contents) {
  const UploadForm form;
  const auto request =
      uploadRequest(dataUploadURL == 1 ? productServer() : testUploadServer(), form, contents);
  const auto reply = platform::sendSynchronousRequest(request);
  const bool received = reply && isUtf8(*reply);
  platform::consoleLog(received ? consoleText(*reply) : "(null)");
  return received;
}
