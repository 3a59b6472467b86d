// Input: the file of the server option.

#include "usage/server_option.h"

#include <string>

#include "tests/fuzz/application_folder.h"
#include "tests/fuzz/requirement.h"
#include "tests/fuzz/target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ApplicationFolder folder;
  constexpr const char* name = "TovalinServerOption.txt";
  const std::string bytes(data, data + size);
  folder.write(name, bytes);
  fuzz::require(GetTovalinServerOption() == (bytes == "0" ? 0 : 1), "nothing but a single 0 means 0");
  fuzz::require(folder.read(name) == (size < 2 ? bytes : "1"),
                "what is too long is replaced by a 1, no other");
  return 0;
}
