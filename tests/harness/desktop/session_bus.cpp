#include "tests/harness/desktop/session_bus.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <vector>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {
namespace {

std::string configuration(const std::string& serviceFolder) {
  const std::string services = serviceFolder.empty() ? "" : "<servicedir>" + serviceFolder + "</servicedir>";
  return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\""
         " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
         "<busconfig><type>session</type><listen>unix:dir=/tmp</listen><auth>EXTERNAL</auth>" +
         services +
         "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
         "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>";
}

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content) : descriptor_(::mkstemp(path_.data())) {
    std::ofstream(path_) << content;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { ::unlink(path_.c_str()); }

  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  std::string path_ = "/tmp/session_bus.XXXXXX";
  FileDescriptor descriptor_;
};

}  // namespace

bool SessionBus::start(const std::string& serviceFolder) {
  stop();
  const TemporaryFile config(configuration(serviceFolder));
  const std::vector<std::string> command{"dbus-daemon",       "--nofork",
                                         "--nopidfile",       "--nosyslog",
                                         "--print-address=1", "--config-file=" + config.path()};
  // The daemon logs warnings about limits that it may not raise inside a namespace.
  if (!daemon_.start(command, {.error = Redirection::null()})) return false;
  address_ = daemon_.readLine().value_or("");
  return !address_.empty();
}

}  // namespace test_support
