#include "platform/portable/http/transfer_end.h"

namespace platform {
namespace {

// The body of a redirect that could not be followed is not a reply.
bool bodyIsWhole(const TransferEnd& end) {
  const bool isRedirect = end.status / 100 == 3;
  return !isRedirect && end.announcedSize >= 0 && end.receivedSize == end.announcedSize;
}

}  // namespace

// libcurl reports success if the connection closes within the head, hence the check of the head. Sending may
// fail because a server that has answered need not read the rest of the request.
bool isWholeReply(const TransferEnd& end) {
  if (!end.headIsWhole) return false;
  const bool onlySendingFailed = end.result == CURLE_SEND_ERROR || end.result == CURLE_OPERATION_TIMEDOUT;
  return end.result == CURLE_OK || (onlySendingFailed && bodyIsWhole(end));
}

}  // namespace platform
