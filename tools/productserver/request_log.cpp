#include "tools/productserver/request_log.h"

#include <chrono>

#include "tools/common/clock_text.h"
#include "tools/common/escaped_text.h"

namespace tools {

std::string requestLine(std::string_view method, std::string_view target, std::string_view outcome) {
  return clockText(std::chrono::system_clock::now()) + "  " + escapedText(method) + " " +
         escapedText(target) + "  " + std::string(outcome);
}

}  // namespace tools
