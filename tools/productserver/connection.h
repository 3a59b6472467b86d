#pragma once

#include <httplib.h>

#include <chrono>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace tools {

// One client's connection, as a stream of the HTTP library. A request can be looked at before it is served:
// what was read ahead is handed out first. No wait outlasts the client or the server's stop. One thread.
class Connection : public httplib::Stream {
 public:
  using Milliseconds = std::chrono::milliseconds;

  // Owns the socket; `stopDescriptor` becomes readable when the server stops and is the caller's.
  Connection(socket_t socket, int stopDescriptor) : socket_(socket), stopDescriptor_(stopDescriptor) {}

  // Reads until `mark` and `more` bytes behind it are there; false when that does not come.
  [[nodiscard]] bool readAhead(std::string_view mark, std::size_t more, Milliseconds patience);
  [[nodiscard]] std::string_view ahead() const { return std::string_view(ahead_).substr(handedOut_); }

  // Sends all of it, however long the client takes; false once it has left.
  bool send(std::string_view text);
  // False when the client left or the server stopped within this time.
  bool pause(Milliseconds time) const;
  void waitForEnd() const;

  void reset();        // ends the connection hard; the client gets an error
  void closeGently();  // the client gets all that was sent, then the end

  [[nodiscard]] bool is_readable() const override;
  [[nodiscard]] bool is_writable() const override;
  ssize_t read(char* buffer, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  [[nodiscard]] socket_t socket() const override { return socket_.get(); }

 private:
  [[nodiscard]] bool waitFor(short events, int timeout) const;
  [[nodiscard]] ssize_t receive(char* buffer, std::size_t size, Milliseconds patience);

  platform::FileDescriptor socket_;
  int stopDescriptor_;
  std::string ahead_;
  std::size_t handedOut_ = 0;  // bytes of ahead_ that were read
};

}  // namespace tools
