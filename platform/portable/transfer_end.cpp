#include "platform/portable/transfer_end.h"

namespace platform {
namespace {

// A redirect that was not followed to its end is not the reply to what was sent.
bool bodyIsWhole(const TransferEnd& end) {
  const bool isRedirect = end.status / 100 == 3;
  return !isRedirect && end.announcedSize >= 0 && end.receivedSize == end.announcedSize;
}

}  // namespace

// libcurl takes a connection that ends within the head for the end of a reply without a body, hence the check
// of the head. A server that has answered need not take the rest of the request.
bool isWholeReply(const TransferEnd& end) {
  if (!end.headIsWhole) return false;
  const bool onlySendingFailed = end.result == CURLE_SEND_ERROR || end.result == CURLE_OPERATION_TIMEDOUT;
  return end.result == CURLE_OK || (onlySendingFailed && bodyIsWhole(end));
}

}  // namespace platform
