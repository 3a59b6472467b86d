#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tools {

// A tool's command line: long options, each with what takes it, and arguments. Used once, by one thread.
class CommandLine {
 public:
  using Take = std::function<bool(const std::string&)>;
  using TakeAll = std::function<bool(const std::vector<std::string>&)>;

  explicit CommandLine(std::string tool) : tool_(std::move(tool)) {}

  // `set` outlives this object, as `name` does.
  void addFlag(const char* name, bool& set);
  // `take` gets the option's value; it returns false after it has complained.
  void addValue(const char* name, Take take);

  // Hands out what is there, the arguments last. False when the line is wrong, after saying on standard error
  // how.
  [[nodiscard]] bool read(int argc, char** argv, const TakeAll& takeArguments);

  // Says so on standard error. False, always.
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
