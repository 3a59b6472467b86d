// bare_notice FIFO PICTURE: the reference for a notice. Creates FIFO, shows a new window of the notice's size
// and contents for each "-non" and hides it for "-noff".

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <string_view>

#include <QApplication>
#include <QLabel>
#include <QScreen>
#include <QSocketNotifier>

namespace {

std::unique_ptr<QWidget> makeNotice(const QString& picture) {
  auto notice = std::make_unique<QWidget>();
  notice->setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                         Qt::WindowStaysOnTopHint);
  notice->setWindowTitle(QStringLiteral("Bare Notification"));
  notice->setFixedSize(420, 80);
  auto* const icon = new QLabel(notice.get());
  icon->setGeometry(15, 10, 60, 60);
  icon->setPixmap(QPixmap(picture).scaled(60, 60, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  auto* const text =
      new QLabel(QStringLiteral("To allow access,\nplease respond on your iDevice."), notice.get());
  text->setGeometry(95, 16, 325, 50);
  return notice;
}

void show(QWidget& notice) {
  QRect place(QPoint(0, 0), notice.size());
  place.moveCenter(QGuiApplication::primaryScreen()->availableGeometry().center());
  notice.setGeometry(place);
  notice.show();
  notice.raise();
  notice.activateWindow();
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  if (argc != 3 || ::mkfifo(argv[1], 0600) != 0) return 1;
  // O_RDWR keeps a writer open, so that read() never returns end of file.
  const int pipe = ::open(argv[1], O_RDWR | O_NONBLOCK | O_CLOEXEC);
  std::unique_ptr<QWidget> notice;
  const QSocketNotifier readable(pipe, QSocketNotifier::Read);
  QObject::connect(&readable, &QSocketNotifier::activated, [&] {
    std::array<char, 1024> buffer{};
    const ssize_t count = ::read(pipe, buffer.data(), buffer.size());
    if (count <= 0) return;
    const std::string_view message(buffer.data(), static_cast<std::size_t>(count));
    notice.reset();
    if (message != "-non") return;
    notice = makeNotice(QString::fromLocal8Bit(argv[2]));
    show(*notice);
  });
  return QApplication::exec();
}
