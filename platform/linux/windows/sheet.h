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

// Content of a sheet.
struct SheetContent {
  std::vector<QString> buttons;  // never empty; the first is the default
  QString message;
  QPixmap icon;
};

// A question at the upper edge of a window. The sheet is a child widget that covers the whole content of the
// window, so it moves, hides and shows with the window and intercepts its input. Main thread only.
//
// Not a top-level window: that would have to follow the first one, would compete with the window manager for
// the input focus, and would leave an unpainted area in the first one if the program is busy after the
// answer.
class Sheet : public QWidget {
 public:
  // Calls `chosen` with the index of the clicked button, from Qt's handling of the click. Ignores input that
  // precedes `mark`. `window` and `mark` must outlive the sheet.
  Sheet(QWidget& window, const InputMark& mark, const SheetContent& content, std::function<void(int)> chosen);

  // Shows the sheet, moves the input focus into it and disables the window's parts behind it.
  void open();
  // Hides the sheet, and restores the window's parts and the input focus.
  void dismiss();

 protected:
  bool focusNextPrevChild(bool next) override;
  bool eventFilter(QObject* part, QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  // A part of the window and its properties without the sheet.
  struct Behind {
    QPointer<QWidget> part;
    Qt::FocusPolicy focusPolicy;
    bool isDisabled;
  };
  void disableBehind();
  void enableBehind();
  void addButtons(const SheetContent& content);
  void layOut(const SheetContent& content);

  QWidget& window_;
  const InputMark& mark_;
  QPointer<QWidget> focusBefore_;
  std::vector<Behind> behind_;
  std::function<void(int)> chosen_;
  QWidget* panel_;
  std::vector<QPushButton*> buttons_;
};

}  // namespace platform
