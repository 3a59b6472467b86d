#pragma once

#include <functional>
#include <string>

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>

// How a test drives one of these programs: it writes commands to standard input, one a line, and reads
// standard output. The end of the input ends nothing; the test kills the program.
class CommandLines {
 public:
  explicit CommandLines(std::function<void(const QString&)> handle);

 private:
  void read();

  std::function<void(const QString&)> handle_;
  QByteArray pending_;
  QSocketNotifier notifier_;
};

// One line to the test, sent at once; what would break the line is escaped. Answers end with a line "ok ..."
// or "error ..."; lines of an answer before it are indented by two spaces; any other line is an event.
void say(const QString& line);

// The word before the first space, and all after it.
struct Command {
  QString word = {};
  QString rest = {};
};
[[nodiscard]] Command splitCommand(const QString& line);
