#pragma once

#include <httplib.h>

#include <chrono>
#include <string>
#include <string_view>

#include "platform/file_descriptor.h"

namespace tools {

// A client's connection as a stream of the HTTP library. Data can be read ahead to examine a request before
// it is served; the stream returns it first. No call blocks after the client has left or the server was
// stopped. For one thread.
class Connection : public httplib::Stream {
 public:
  using Milliseconds = std::chrono::milliseconds;

  // Owns the socket. `stopDescriptor` becomes readable when the server stops; not owned.
  Connection(socket_t socket, int stopDescriptor) : socket_(socket), stopDescriptor_(stopDescriptor) {}

  // Reads until `mark` and `more` bytes after it were received. Returns false on timeout or if the connection
  // ended.
  [[nodiscard]] bool readAhead(std::string_view mark, std::size_t more, Milliseconds timeout);
  [[nodiscard]] std::string_view ahead() const { return std::string_view(ahead_).substr(consumed_); }

  // Sends all of `text`, however slowly the client reads. Returns false if the client has left.
  bool send(std::string_view text);
  // Returns false if the client left or the server stopped within this time.
  bool pause(Milliseconds time) const;
  void waitForEnd() const;

  void reset();        // resets the connection (RST)
  void closeGently();  // the client receives all data sent, then end of file

  [[nodiscard]] bool is_readable() const override;
  [[nodiscard]] bool is_writable() const override;
  ssize_t read(char* buffer, std::size_t size) override;
  ssize_t write(const char* data, std::size_t size) override;
  void get_remote_ip_and_port(std::string& ip, int& port) const override;
  void get_local_ip_and_port(std::string& ip, int& port) const override;
  [[nodiscard]] socket_t socket() const override { return socket_.get(); }

 private:
  [[nodiscard]] bool waitFor(short events, int timeout) const;
  [[nodiscard]] ssize_t receive(char* buffer, std::size_t size, Milliseconds timeout);

  platform::FileDescriptor socket_;
  int stopDescriptor_;
  std::string ahead_;
  std::size_t consumed_ = 0;  // number of bytes of ahead_ already returned
};

}  // namespace tools
