#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "tests/harness/processes/file_descriptor.h"
#include "tests/harness/processes/wait_until.h"

namespace tools_test {

// A client that sends bytes as they are and sees how the server ends the connection.
class RawClient {
 public:
  explicit RawClient(int port);

  [[nodiscard]] bool send(std::string_view text) const;

  enum class End { Closed, Reset, StillOpen };
  struct Answer {
    std::string text;
    End end = End::StillOpen;
  };

  // Reads until the end of the connection, until `most` bytes are there, or until nothing came for `silence`.
  [[nodiscard]] Answer read(std::chrono::milliseconds silence = test_support::kPatience,
                            std::size_t most = std::string::npos) const;

 private:
  test_support::FileDescriptor socket_;
};

}  // namespace tools_test
