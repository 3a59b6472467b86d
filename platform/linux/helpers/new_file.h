#pragma once

#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace helpers {

// Opens the folder at `path` and sets its mode to 0700. Returns an invalid descriptor, with errno set, if it
// is a link, not a folder, or not owned by this user (EPERM).
[[nodiscard]] platform::FileDescriptor openOwnFolder(const std::string& path);

// A new file, with mode 0600, in an open folder. The destructor removes it unless it is kept. The folder's
// descriptor must outlive this object.
//
// An existing file of that name is unlinked and never opened, so a link or FIFO there does no harm.
class NewFile {
 public:
  NewFile(int folder, std::string name);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Returns whether the file was created.
  [[nodiscard]] bool valid() const { return file_.valid(); }
  [[nodiscard]] int descriptor() const { return file_.get(); }

  // Writes all bytes. Returns false, with errno set, on error.
  [[nodiscard]] bool write(std::string_view bytes);

  void keep() { kept_ = true; }
  // Keeps the file under another name in the same folder and replaces a file of that name. Returns false,
  // with errno set, on error.
  [[nodiscard]] bool keepAs(const std::string& name);

 private:
  int folder_;
  std::string name_;
  platform::FileDescriptor file_;
  bool kept_ = false;
};

}  // namespace helpers
