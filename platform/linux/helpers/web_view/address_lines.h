#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace helpers {

// Returns whether pages may be fetched from this address: http or https, printable ASCII only. Thread-safe.
[[nodiscard]] bool isWebAddress(std::string_view text);

// Returns whether a page may navigate its view or a frame to `address`: a web address, about:blank or
// about:srcdoc. Returns false for nullptr. Thread-safe.
[[nodiscard]] bool isAllowedAddress(const char* address);

// Splits a stream of untrusted bytes into lines and returns those that are web addresses.
class AddressLines {
 public:
  static constexpr std::size_t maxLineLength = std::size_t{64} * 1024;

  // Returns the addresses whose lines end in `bytes`, in order. Keeps an incomplete line for the next call.
  // Discards a line longer than maxLineLength.
  [[nodiscard]] std::vector<std::string> take(std::string_view bytes);

 private:
  void append(std::string_view part);

  std::string line_;
  bool tooLong_ = false;
};

}  // namespace helpers
