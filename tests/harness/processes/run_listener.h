#pragma once

#include <list>
#include <string>
#include <vector>

#include "tests/harness/processes/file_descriptor.h"

namespace test_support {

// A run of an outside command, which blocks until its connection is answered or closed.
struct CommandRun {
  std::string program = {};
  std::vector<std::string> arguments = {};
  std::string searchPath = {};
  FileDescriptor connection = {};

  void answer(int status) const;
};

// Accepts the reports of `recorder` programs.
class RunListener {
 public:
  explicit RunListener(std::string path);
  RunListener(const RunListener&) = delete;
  RunListener& operator=(const RunListener&) = delete;
  ~RunListener();

  [[nodiscard]] bool valid() const { return socket_.valid(); }
  [[nodiscard]] std::vector<int> fds() const;  // poll all of them for input

  // Returns the runs that are completely received. Never blocks.
  [[nodiscard]] std::vector<CommandRun> takeIn();

 private:
  struct Connection {
    FileDescriptor fd = {};
    std::string bytes = {};
    bool ended = false;

    void read();
  };

  void acceptAll();

  std::string path_;
  FileDescriptor socket_;
  std::list<Connection> connections_;
};

}  // namespace test_support
