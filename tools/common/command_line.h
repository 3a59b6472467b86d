#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tools {

// Parser for a tool's command line: long options, each with a handler, and arguments. For one use by one
// thread.
class CommandLine {
 public:
  using Take = std::function<bool(const std::string&)>;
  using TakeAll = std::function<bool(const std::vector<std::string>&)>;

  explicit CommandLine(std::string tool) : tool_(std::move(tool)) {}

  // `set` and `name` must outlive this object.
  void addFlag(const char* name, bool& set);
  // `take` receives the option's value. If the value is invalid, it prints an error and returns false.
  void addValue(const char* name, Take take);

  // Calls the handlers, then `takeArguments`. Returns false after printing an error on standard error if the
  // command line is invalid.
  [[nodiscard]] bool read(int argc, char** argv, const TakeAll& takeArguments);

  // Prints an error on standard error. Always returns false.
  bool complain(const std::string& text) const;

 private:
  struct Option {
    const char* name;
    bool hasValue;
    Take take;
  };
  [[nodiscard]] bool readOptions(int argc, char** argv) const;

  std::string tool_;
  std::vector<Option> options_;
};

}  // namespace tools
