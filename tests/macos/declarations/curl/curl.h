#pragma once

// The system's libcurl as of version 7.85, the oldest that the build accepts: names of later versions are
// errors.

#pragma GCC system_header
#include_next <curl/curl.h>

#undef LIBCURL_VERSION_NUM
#define LIBCURL_VERSION_NUM 0x075500

#undef CURL_HTTP_VERSION_3ONLY
#undef CURL_WRITEFUNC_ERROR
#pragma GCC poison CURLOPT_CA_CACHE_TIMEOUT CURLOPT_QUICK_EXIT CURL_HTTP_VERSION_3ONLY CURL_WRITEFUNC_ERROR
