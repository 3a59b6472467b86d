#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace test_support {

// The target of one of a child's three standard streams.
struct Redirection {
  enum class To { Null, Inherit, Pipe, File };

  To to = To::Null;
  std::string path;  // of a file: read from its start as input, truncated as output

  static Redirection null() { return {To::Null, {}}; }
  static Redirection inherit() { return {To::Inherit, {}}; }
  static Redirection pipe() { return {To::Pipe, {}}; }
  static Redirection file(std::string path) { return {To::File, std::move(path)}; }
};

// Options for starting a child process.
struct ChildOptions {
  // Changes to the caller's environment: a value sets the variable, nullopt unsets it.
  std::map<std::string, std::optional<std::string>> environment = {};
  std::string workingDirectory = {};  // empty: the caller's
  Redirection input = Redirection::null();
  Redirection output = Redirection::pipe();
  Redirection error = Redirection::inherit();
};

}  // namespace test_support
