#include "tests/harness/bus_doubles/command_lines.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <utility>

CommandLines::CommandLines(std::function<void(const QString&)> handle)
    : handle_(std::move(handle)), notifier_(STDIN_FILENO, QSocketNotifier::Read) {
  QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { read(); });
}

void CommandLines::read() {
  std::array<char, 4096> buffer;
  const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
  if (count <= 0) {
    notifier_.setEnabled(false);
    return;
  }
  pending_.append(buffer.data(), count);
  for (qsizetype end = pending_.indexOf('\n'); end >= 0; end = pending_.indexOf('\n')) {
    const QString line = QString::fromUtf8(pending_.left(end));
    pending_.remove(0, end + 1);
    handle_(line);
  }
}

void say(const QString& line) {
  QString escaped = line;
  escaped.replace('\\', "\\\\").replace('\n', "\\n");
  std::fprintf(stdout, "%s\n", escaped.toUtf8().constData());
  std::fflush(stdout);
}

Command splitCommand(const QString& line) {
  const qsizetype space = line.indexOf(' ');
  if (space < 0) return {line, {}};
  return {line.left(space), line.mid(space + 1)};
}
