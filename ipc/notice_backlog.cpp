#include "ipc/notice_backlog.h"

#include <utility>

namespace {

bool concernsAccessNotice(NotificationAction call) {
  return call == NotificationAction::NotificationOn || call == NotificationAction::NotificationOff;
}

bool shows(NotificationAction call) {
  return call == NotificationAction::NotificationOn || call == NotificationAction::NoticeEnumerateOn;
}

bool& stateOf(ShownNotices& notices, NotificationAction call) {
  return concernsAccessNotice(call) ? notices.notice : notices.enumerateNotice;
}

}  // namespace

NoticeBacklog::Verdict NoticeBacklog::request(NotificationAction call) {
  if (merged_.empty() && waiting_ < maxWaiting) {
    countAsPosted(call);
    return Verdict::Post;
  }
  const bool first = merged_.empty();
  std::erase_if(merged_, [call](NotificationAction earlier) {
    return concernsAccessNotice(earlier) == concernsAccessNotice(call);
  });
  merged_.push_back(call);
  return first ? Verdict::BeginMerging : Verdict::Merge;
}

std::vector<NotificationAction> NoticeBacklog::begin() {
  --waiting_;
  if (waiting_ > 0) return {};
  std::vector<NotificationAction> calls = std::exchange(merged_, {});
  std::erase_if(calls, [this](NotificationAction call) { return stateOf(posted_, call) == shows(call); });
  for (const NotificationAction call : calls) countAsPosted(call);
  return calls;
}

void NoticeBacklog::countAsPosted(NotificationAction call) {
  ++waiting_;
  stateOf(posted_, call) = shows(call);
}
