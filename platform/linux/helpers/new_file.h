#pragma once

#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace helpers {

// Opens the folder at `path` if it is a folder of this user's own and no link, and takes from all others the
// right to enter it. Empty, with errno set, if it is anything else.
[[nodiscard]] platform::FileDescriptor openOwnFolder(const std::string& path);

// A file that is being made in an open folder, readable by its owner alone. It is removed again unless it is
// kept. The folder's descriptor has to outlive it.
//
// Whatever stands at its name is replaced and never opened, so that neither a link nor a FIFO there matters.
class NewFile {
 public:
  NewFile(int folder, std::string name);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // False if the file could not be made.
  [[nodiscard]] bool valid() const { return file_.valid(); }
  [[nodiscard]] int descriptor() const { return file_.get(); }

  // Returns false, with errno set, if not all of it could be written.
  [[nodiscard]] bool write(std::string_view bytes);

  void keep() { kept_ = true; }
  // Keeps the file, under another name of the same folder. Returns false, with errno set, if that fails.
  [[nodiscard]] bool keepAs(const std::string& name);

 private:
  int folder_;
  std::string name_;
  platform::FileDescriptor file_;
  bool kept_ = false;
};

}  // namespace helpers
