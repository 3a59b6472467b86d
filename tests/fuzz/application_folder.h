#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace fuzz {

// An application directory of this process's own, so that no target touches the user's; removed with this
// object. One a process.
class ApplicationFolder {
 public:
  ApplicationFolder();
  ~ApplicationFolder();
  ApplicationFolder(const ApplicationFolder&) = delete;
  ApplicationFolder& operator=(const ApplicationFolder&) = delete;

  // Puts a file with these bytes there, in the place of an earlier one.
  void write(const std::string& name, std::string_view bytes) const;
  [[nodiscard]] std::string read(const std::string& name) const;

 private:
  std::filesystem::path root_;
  std::filesystem::path folder_;
};

}  // namespace fuzz
