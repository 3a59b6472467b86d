#pragma once

#include <functional>
#include <string>

#include <QByteArray>
#include <QSocketNotifier>
#include <QString>

// The control channel of a fake service: the test writes one command per line to standard input and reads
// standard output. End of input does not end the program; the test kills it.
class CommandLines {
 public:
  explicit CommandLines(std::function<void(const QString&)> handle);

 private:
  void read();

  std::function<void(const QString&)> handle_;
  QByteArray pending_;
  QSocketNotifier notifier_;
};

// Writes one line to the test and flushes it; escapes line breaks. An answer ends with a line "ok ..." or
// "error ..."; its earlier lines are indented by two spaces. All other lines are events.
void say(const QString& line);

// A command line: `word` up to the first space and `rest` after it.
struct Command {
  QString word = {};
  QString rest = {};
};
[[nodiscard]] Command splitCommand(const QString& line);
