#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace helpers {

// Whether a page may be fetched from here: http or https, and nothing but visible ASCII.
[[nodiscard]] bool isWebAddress(std::string_view text);

// Whether a page may lead its view, or a frame in it, here: where a page may be fetched from, or to the empty
// page that a script fills. `address` may be missing.
[[nodiscard]] bool mayLeadTo(const char* address);

// Takes a stream of bytes, whoever wrote it, apart into lines, and hands out those that are web addresses.
class AddressLines {
 public:
  static constexpr std::size_t longestLine = std::size_t{64} * 1024;

  // The addresses whose lines end in `bytes`, in their order. A line without its end is kept for the next
  // call; one that grows too long is passed over.
  [[nodiscard]] std::vector<std::string> take(std::string_view bytes);

 private:
  void append(std::string_view part);

  std::string line_;
  bool tooLong_ = false;
};

}  // namespace helpers
