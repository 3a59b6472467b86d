#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "platform/portable/http/transfer_end.h"

namespace platform {

// A callback that returns this number of bytes aborts the transfer. libcurl has a name for it since 7.87.
inline constexpr std::size_t abortedByCallback = 0xFFFFFFFF;

// One libcurl transfer, aborted after a time without progress. For use by one thread.
class UrlTransfer {
 public:
  UrlTransfer();
  ~UrlTransfer();
  UrlTransfer(const UrlTransfer&) = delete;
  UrlTransfer& operator=(const UrlTransfer&) = delete;

  // Sets an option of the transfer. If libcurl rejects it, `run` fails.
  template <typename Value>
  void set(CURLoption option, Value value) {
    accepted_ = accepted_ && curl_easy_setopt(handle_.get(), option, value) == CURLE_OK;
  }

  // Runs the transfer; call it once. Returns true if a complete reply was received, whatever its status code,
  // and no period without progress reached `interval`.
  [[nodiscard]] bool run(std::chrono::milliseconds interval);

  // Returns, after `run`, the values of the last reply's first ten header fields of that name, joined by
  // commas; an empty text if there are none. Interim replies, redirects and trailers do not count.
  [[nodiscard]] std::string header(const char* name) const;

 private:
  struct HandleCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  struct LoopCleanup {
    void operator()(CURLM* loop) const { curl_multi_cleanup(loop); }
  };

  static curl_socket_t openSocket(void* transfer, curlsocktype purpose, curl_sockaddr* address);
  static int closeSocket(void* transfer, curl_socket_t socket);
  static std::size_t takeHeadLine(char* line, std::size_t one, std::size_t size, void* transfer);

  void skipWaitInCleanup();
  [[nodiscard]] CURLcode waitForEnd(std::chrono::milliseconds interval);
  [[nodiscard]] CURLcode result() const;
  [[nodiscard]] TransferEnd endOf(CURLcode result) const;
  [[nodiscard]] long unacknowledgedBytes() const;

  template <typename Value>
  [[nodiscard]] Value info(CURLINFO what) const {
    Value value{};
    curl_easy_getinfo(handle_.get(), what, &value);
    return value;
  }

  std::vector<curl_socket_t> sockets_;
  std::size_t headBytes_ = 0;    // in all heads and trailers
  long answeredRedirects_ = -1;  // number of redirects before the last complete head
  std::unique_ptr<CURLM, LoopCleanup> loop_;
  std::unique_ptr<CURL, HandleCleanup> handle_;
  bool accepted_ = false;
};

}  // namespace platform
