// A program with windows, for the tests of window queries and input: prints the events that its windows
// receive.

#include <cstdio>

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace {

void tell(const QString& event) {
  std::puts(event.toUtf8().constData());
  std::fflush(stdout);
}

class SampleWindow : public QWidget {
 public:
  SampleWindow(const QString& name, const QColor& colour, const QRect& place) {
    setWindowTitle(name);
    setPalette(colour);
    setGeometry(place);
    show();
  }

 protected:
  void mousePressEvent(QMouseEvent* event) override { printMouse("press", event); }
  void mouseReleaseEvent(QMouseEvent* event) override { printMouse("release", event); }
  void keyPressEvent(QKeyEvent* event) override { tell("key " + event->text()); }
  void closeEvent(QCloseEvent* event) override {
    tell("close " + windowTitle());
    event->accept();
  }

 private:
  void printMouse(const QString& action, const QMouseEvent* event) {
    const QPoint place = event->position().toPoint();
    tell(action + " " + windowTitle() + " " + QString::number(place.x()) + " " + QString::number(place.y()) +
         " " + QString::number(static_cast<int>(event->button())));
  }
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  SampleWindow low("Low", QColor(200, 100, 50), QRect(100, 100, 300, 200));
  SampleWindow high("High", QColor(10, 20, 30), QRect(500, 300, 120, 90));
  high.setWindowFlag(Qt::WindowStaysOnTopHint);
  high.show();
  return QApplication::exec();
}
