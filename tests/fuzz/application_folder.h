#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace fuzz {

// A temporary application directory of this process, so that no target uses the user's. The destructor
// removes it. One object per process. The constructor throws std::runtime_error on failure.
class ApplicationFolder {
 public:
  ApplicationFolder();
  ~ApplicationFolder();
  ApplicationFolder(const ApplicationFolder&) = delete;
  ApplicationFolder& operator=(const ApplicationFolder&) = delete;

  // Creates or replaces the file `name`.
  void write(const std::string& name, std::string_view bytes) const;
  [[nodiscard]] std::string read(const std::string& name) const;

 private:
  std::filesystem::path root_;
  std::filesystem::path folder_;
};

}  // namespace fuzz
