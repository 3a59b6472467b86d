#include "platform/portable/http/url_transfer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <string_view>

#include "platform/descriptors.h"

namespace platform {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

// How often to query the number of unacknowledged bytes, because no event is raised when the peer
// acknowledges them.
constexpr milliseconds samplingTime{250};

// The maximum size of all heads and trailers. The protocol limits neither interim replies nor trailers, and
// libcurl stores every line.
constexpr std::size_t maxHeadBytes = std::size_t{1} << 20;

milliseconds since(Clock::time_point time) {
  return std::chrono::duration_cast<milliseconds>(Clock::now() - time);
}

}  // namespace

UrlTransfer::UrlTransfer() : loop_(curl_multi_init()), handle_(curl_easy_init()) {
  accepted_ = loop_ != nullptr && handle_ != nullptr;
  set(CURLOPT_OPENSOCKETFUNCTION, &UrlTransfer::openSocket);
  set(CURLOPT_OPENSOCKETDATA, this);
  set(CURLOPT_CLOSESOCKETFUNCTION, &UrlTransfer::closeSocket);
  set(CURLOPT_CLOSESOCKETDATA, this);
  set(CURLOPT_HEADERFUNCTION, &UrlTransfer::takeHeadLine);
  set(CURLOPT_HEADERDATA, this);
  set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
  set(CURLOPT_NOSIGNAL, 1L);
  skipWaitInCleanup();
}

// curl_easy_cleanup must not wait for a name server that does not answer. libcurl before 7.87 rejects the
// option and waits.
void UrlTransfer::skipWaitInCleanup() {
#if LIBCURL_VERSION_NUM >= 0x075700
  static_cast<void>(curl_easy_setopt(handle_.get(), CURLOPT_QUICK_EXIT, 1L));
#endif
}

UrlTransfer::~UrlTransfer() {
  curl_multi_remove_handle(loop_.get(), handle_.get());
}

bool UrlTransfer::run(milliseconds interval) {
  if (!accepted_ || curl_multi_add_handle(loop_.get(), handle_.get()) != CURLM_OK) return false;
  return isWholeReply(endOf(waitForEnd(interval)));
}

std::string UrlTransfer::header(const char* name) const {
  constexpr int lastRequest = -1;
  // Each call searches the whole head, so that a head full of such fields would take seconds.
  constexpr std::size_t maxFields = 10;
  std::string values;
  curl_header* field = nullptr;
  for (std::size_t i = 0; i < maxFields && curl_easy_header(handle_.get(), name, i, CURLH_HEADER, lastRequest,
                                                            &field) == CURLHE_OK;
       ++i) {
    if (i > 0) values += ',';
    values += field->value;
  }
  return values;
}

// A ready descriptor means a finished name look-up, a connection, or bytes received or sendable. It does not
// show the progress of bytes already in the socket buffer, which may be megabytes on a slow line; the count
// of unacknowledged bytes does.
CURLcode UrlTransfer::waitForEnd(milliseconds interval) {
  auto lastActivity = Clock::now();
  for (int running = 1;;) {
    if (curl_multi_perform(loop_.get(), &running) != CURLM_OK) return CURLE_FAILED_INIT;
    if (running == 0) return result();
    const long unacknowledged = unacknowledgedBytes();
    const auto wait = std::clamp(interval - since(lastActivity), milliseconds(0), samplingTime);
    int ready = 0;
    if (curl_multi_poll(loop_.get(), nullptr, 0, static_cast<int>(wait.count()), &ready) != CURLM_OK)
      return CURLE_FAILED_INIT;
    if (ready > 0 || unacknowledgedBytes() != unacknowledged) {
      lastActivity = Clock::now();
    } else if (since(lastActivity) >= interval) {
      return CURLE_OPERATION_TIMEDOUT;
    }
  }
}

CURLcode UrlTransfer::result() const {
  int left = 0;
  const CURLMsg* message = curl_multi_info_read(loop_.get(), &left);
  return message != nullptr && message->msg == CURLMSG_DONE ? message->data.result : CURLE_FAILED_INIT;
}

TransferEnd UrlTransfer::endOf(CURLcode result) const {
  return {.result = result,
          .headIsWhole = answeredRedirects_ == info<long>(CURLINFO_REDIRECT_COUNT),
          .status = info<long>(CURLINFO_RESPONSE_CODE),
          .announcedSize = info<curl_off_t>(CURLINFO_CONTENT_LENGTH_DOWNLOAD_T),
          .receivedSize = info<curl_off_t>(CURLINFO_SIZE_DOWNLOAD_T)};
}

long UrlTransfer::unacknowledgedBytes() const {
  long sum = 0;
  for (const curl_socket_t socket : sockets_) {
    sum += platform::unacknowledgedBytes(socket).value_or(0);
  }
  return sum;
}

curl_socket_t UrlTransfer::openSocket(void* transfer, curlsocktype /*purpose*/, curl_sockaddr* address) {
  FileDescriptor socket = platform::openSocket(address->family, address->socktype, address->protocol);
  if (!socket.valid()) return CURL_SOCKET_BAD;
  try {
    static_cast<UrlTransfer*>(transfer)->sockets_.push_back(socket.get());
    return socket.release();
  } catch (const std::bad_alloc&) {
    return CURL_SOCKET_BAD;
  }
}

int UrlTransfer::closeSocket(void* transfer, curl_socket_t socket) {
  std::erase(static_cast<UrlTransfer*>(transfer)->sockets_, socket);
  return ::close(socket);
}

std::size_t UrlTransfer::takeHeadLine(char* line, std::size_t /*one*/, std::size_t size, void* transfer) {
  auto& self = *static_cast<UrlTransfer*>(transfer);
  self.headBytes_ += size;
  if (self.headBytes_ > maxHeadBytes) return abortedByCallback;
  const bool isEnd = std::string_view(line, size).find_first_not_of("\r\n") == std::string_view::npos;
  const bool isInterim = self.info<long>(CURLINFO_RESPONSE_CODE) < 200;
  if (isEnd && !isInterim) self.answeredRedirects_ = self.info<long>(CURLINFO_REDIRECT_COUNT);
  return size;
}

}  // namespace platform
