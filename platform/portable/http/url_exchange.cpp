#include "platform/portable/http/url_exchange.h"

#include <cstdio>
#include <exception>
#include <memory>
#include <new>
#include <string_view>
#include <tuple>

#include "platform/portable/bounded_text.h"
#include "platform/portable/http/content_coding.h"
#include "platform/portable/http/url_request_body.h"
#include "platform/portable/http/url_transfer.h"

namespace platform {
namespace {

constexpr long maxRedirects = 20;

class HeaderList {
 public:
  void add(const char* header) {
    curl_slist* longer = curl_slist_append(list_.get(), header);
    if (longer == nullptr) throw std::bad_alloc();
    std::ignore = list_.release();
    list_.reset(longer);
  }
  [[nodiscard]] curl_slist* get() const { return list_.get(); }

 private:
  struct Cleanup {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  std::unique_ptr<curl_slist, Cleanup> list_;
};

std::size_t takeReply(char* data, std::size_t /*one*/, std::size_t size, void* reply) {
  try {
    return static_cast<BoundedText*>(reply)->append({data, size}) ? size : abortedByCallback;
  } catch (const std::exception&) {
    return abortedByCallback;
  }
}

std::size_t readBody(char* buffer, std::size_t one, std::size_t size, void* body) {
  return static_cast<UrlRequestBody*>(body)->read({buffer, one * size});
}

int seekBody(void* body, curl_off_t offset, int origin) {
  const bool found = origin == SEEK_SET && offset >= 0 &&
                     static_cast<UrlRequestBody*>(body)->seek(static_cast<std::size_t>(offset));
  return found ? CURL_SEEKFUNC_OK : CURL_SEEKFUNC_FAIL;
}

// In libcurl's header syntax, "Name:" removes a header and "Name;" sends one without a value.
std::string libcurlHeader(const std::string& header) {
  const std::size_t colon = header.find(':');
  const bool empty =
      colon != std::string::npos && header.find_first_not_of(" \t", colon + 1) == std::string::npos;
  return empty ? header.substr(0, colon) + ';' : header;
}

HeaderList headersOf(const UrlRequest& request) {
  HeaderList headers;
  // Suppresses the Content-Type that libcurl adds by default, and "Expect: 100-continue", which delays
  // requests to servers without support for it by one second.
  headers.add("Content-Type:");
  headers.add("Expect:");
  // Only GET: lists compress well, replies to POST are short. The body is decoded here and not by libcurl,
  // which fails if the body is not in the coding that the server names.
  if (request.method == "GET") headers.add("Accept-Encoding: gzip, deflate");
  if (request.cachePolicy == UrlRequest::CachePolicy::ReloadIgnoringLocalCache) {
    headers.add("Cache-Control: no-cache");
    headers.add("Pragma: no-cache");
  }
  for (const std::string& header : request.headers) headers.add(libcurlHeader(header).c_str());
  return headers;
}

void setDestination(UrlTransfer& transfer, const UrlRequest& request) {
  transfer.set(CURLOPT_URL, request.url.c_str());
  transfer.set(CURLOPT_PROTOCOLS_STR, "http,https");
  // Makes a URL without a scheme invalid; by default libcurl guesses the scheme.
  transfer.set(CURLOPT_DEFAULT_PROTOCOL, "file");
  transfer.set(CURLOPT_FOLLOWLOCATION, 1L);
  transfer.set(CURLOPT_MAXREDIRS, request.redirectSchemes.empty() ? 0 : maxRedirects);
  if (!request.redirectSchemes.empty())
    transfer.set(CURLOPT_REDIR_PROTOCOLS_STR, request.redirectSchemes.c_str());
  // With one request per connection, later HTTP versions bring no benefit.
  transfer.set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
  transfer.set(CURLOPT_USERAGENT, "TovalinTray");
}

void setBody(UrlTransfer& transfer, UrlRequestBody& body) {
  transfer.set(CURLOPT_POST, 1L);
  transfer.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
  transfer.set(CURLOPT_READFUNCTION, &readBody);
  transfer.set(CURLOPT_READDATA, &body);
  transfer.set(CURLOPT_SEEKFUNCTION, &seekBody);
  transfer.set(CURLOPT_SEEKDATA, &body);
  // 307 and 308 preserve the method without this option; 303 requires GET.
  transfer.set(CURLOPT_POSTREDIR, static_cast<long>(CURL_REDIR_POST_301 | CURL_REDIR_POST_302));
}

void setReply(UrlTransfer& transfer, BoundedText& reply) {
  transfer.set(CURLOPT_WRITEFUNCTION, &takeReply);
  transfer.set(CURLOPT_WRITEDATA, &reply);
}

}  // namespace

std::optional<std::string> exchange(const UrlRequest& request) {
  const HeaderList headers = headersOf(request);
  UrlRequestBody body(request.body);
  BoundedText reply(request.maximumReplySize);
  UrlTransfer transfer;
  setDestination(transfer, request);
  if (request.method == "POST") setBody(transfer, body);
  transfer.set(CURLOPT_HTTPHEADER, headers.get());
  setReply(transfer, reply);
  if (!transfer.run(request.timeoutInterval)) return std::nullopt;
  return withoutContentCodings(reply.take(), transfer.header("Content-Encoding"), request.maximumReplySize);
}

}  // namespace platform
