#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"

namespace tools_test {

// A TCP client that sends bytes verbatim and reports how the server ends the connection.
class RawClient {
 public:
  explicit RawClient(int port);

  [[nodiscard]] bool send(std::string_view text) const;

  enum class End { Closed, Reset, StillOpen };
  struct Answer {
    std::string text;
    End end = End::StillOpen;
  };

  // Reads until the connection ends, `maxBytes` bytes have arrived, or no byte arrives for `silence`.
  [[nodiscard]] Answer read(std::chrono::milliseconds silence = test_support::kPatience,
                            std::size_t maxBytes = std::string::npos) const;

 private:
  test_support::FileDescriptor socket_;
};

}  // namespace tools_test
