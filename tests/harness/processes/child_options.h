#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace test_support {

// Where one of a child's three standard streams leads.
struct Redirection {
  enum class To { Null, Inherit, Pipe, File };

  To to = To::Null;
  std::string path;  // of a file: read from its start as input, made anew as output

  static Redirection null() { return {To::Null, {}}; }
  static Redirection inherit() { return {To::Inherit, {}}; }
  static Redirection pipe() { return {To::Pipe, {}}; }
  static Redirection file(std::string path) { return {To::File, std::move(path)}; }
};

// What a child gets besides its arguments.
struct ChildOptions {
  // Changes to the caller's own environment: a value sets the name, an empty optional unsets it.
  std::map<std::string, std::optional<std::string>> environment = {};
  std::string workingDirectory = {};  // empty: the caller's
  Redirection input = Redirection::null();
  Redirection output = Redirection::pipe();
  Redirection error = Redirection::inherit();
};

}  // namespace test_support
