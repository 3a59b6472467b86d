#include "platform/url_request.h"

#include <curl/curl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <unistd.h>

#include <exception>
#include <functional>
#include <future>

#include "platform/linux/url_exchange.h"

namespace platform {
namespace {

// A thread that handles a signal must have the descriptors that the handler knows, and the transfer's has
// not.
class SignalBlock {
 public:
  SignalBlock() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalBlock(const SignalBlock&) = delete;
  SignalBlock& operator=(const SignalBlock&) = delete;

 private:
  sigset_t before_{};
};

// libcurl and what it calls open descriptors that a program started meanwhile by another thread would
// inherit; in a table of the transfer's own they can't be.
std::optional<std::string> exchangeWithOwnDescriptors(const UrlRequest& request) {
  ::close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_UNSHARE);
  return exchange(request);
}

std::future<std::optional<std::string>> startExchange(const UrlRequest& request) {
  const SignalBlock block;
  return std::async(std::launch::async, &exchangeWithOwnDescriptors, std::cref(request));
}

bool isReady() {
  static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  return ready;
}

}  // namespace

std::optional<std::string> sendSynchronousRequest(const UrlRequest& request) {
  const bool known = request.method == "POST" || (request.method == "GET" && request.body.empty());
  if (!known || !isReady()) return std::nullopt;
  try {
    return startExchange(request).get();
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

}  // namespace platform
