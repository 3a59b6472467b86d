#pragma once

#include <functional>
#include <vector>

#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QString>
#include <QWidget>

namespace platform {

class InputMark;

// What a sheet shows.
struct SheetContent {
  std::vector<QString> buttons;  // the default first; never none
  QString message;
  QPixmap icon;
};

// A question hung on a window's upper edge. It stands inside the window, over all of its content, so it
// moves, hides and shows with the window, and input ends at it. Main thread.
//
// A window of its own would have to follow the first one around, would fight with the window manager for the
// keyboard, and would leave a hole in the first one's picture when the program is busy after the answer.
class Sheet : public QWidget {
 public:
  // `chosen` is called with the index of the button, within the toolkit's handling of its click. Input from
  // before the mark does nothing.
  Sheet(QWidget& window, const InputMark& mark, const SheetContent& content, std::function<void(int)> chosen);

  // Shows it and gives it the keyboard.
  void open();
  // Takes it away and gives the keyboard back.
  void dismiss();

 protected:
  bool focusNextPrevChild(bool next) override;
  bool eventFilter(QObject* part, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void addButtons(const SheetContent& content);
  void layOut(const SheetContent& content);

  QWidget& window_;
  const InputMark& mark_;
  QPointer<QWidget> focusBefore_;
  std::function<void(int)> chosen_;
  QWidget* panel_;
  std::vector<QPushButton*> buttons_;
};

}  // namespace platform
