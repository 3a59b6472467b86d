#include "platform/window.h"

#include <malloc.h>

#include <algorithm>
#include <optional>
#include <utility>

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QVariant>
#include <QWindow>

#include "platform/linux/desktop/color_contrast.h"
#include "platform/linux/desktop/desktop_watch.h"
#include "platform/linux/desktop/x_requests.h"
#include "platform/linux/windows/accessibility.h"
#include "platform/linux/windows/color_impl.h"
#include "platform/linux/windows/modal_stack.h"
#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/view_impl.h"
#include "platform/linux/windows/window_hints.h"
#include "platform/linux/windows/window_impl.h"

namespace platform {
namespace {

// Returns the area for the window's content in which its frame is wholly on the screen.
QRect availableContentArea(const QWidget& window) {
  const QRect content = window.geometry();
  const QRect frame = window.frameGeometry();
  return window.windowHandle()->screen()->availableGeometry().adjusted(
      content.left() - frame.left(), content.top() - frame.top(), content.right() - frame.right(),
      content.bottom() - frame.bottom());
}

// If `area` is too small, keeps the upper left corner visible.
QRect movedInto(const QRect& area, QRect place) {
  place.moveRight(std::min(place.right(), area.right()));
  place.moveBottom(std::min(place.bottom(), area.bottom()));
  place.moveLeft(std::max(place.left(), area.left()));
  place.moveTop(std::max(place.top(), area.top()));
  return place;
}

// A window without a close control in its title bar ignores all close requests.
class WindowWidget : public QWidget {
 public:
  Window::Impl* owner = nullptr;

  explicit WindowWidget(WindowStyle style) : style_(style) {
    const Qt::WindowFlags titled = Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint;
    setWindowFlags(style == WindowStyle::Titled ? titled : titled | Qt::WindowCloseButtonHint);
  }

 protected:
  void closeEvent(QCloseEvent* event) override {
    event->setAccepted(style_ == WindowStyle::TitledClosable && !owner->sheets.isUp());
    if (!event->isAccepted()) return;
    owner->willBeClosed();
    owner->releaseOnceIdle();
  }

  void showEvent(QShowEvent*) override {
    connect(windowHandle(), &QWindow::screenChanged, this, &WindowWidget::keepSizeOnceIdle,
            Qt::UniqueConnection);
  }

  void paintEvent(QPaintEvent*) override {
    owner->awaitsFirstPaint = false;
    owner->firstPicture.clearBackground(*this);
  }

  void changeEvent(QEvent* event) override {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && style_ == WindowStyle::Titled) followState();
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    close();
  }

 private:
  // When a window moves to a screen with another scale, Qt keeps its size in device pixels instead of points.
  void keepSizeOnceIdle() {
    const auto keepSize = [this] {
      if (size() == minimumSize() || windowHandle() == nullptr) return;
      QRect place(QPoint(0, 0), minimumSize());
      place.moveCenter(geometry().center());
      setGeometry(movedInto(availableContentArea(*this), place));
    };
    QMetaObject::invokeMethod(this, keepSize, Qt::QueuedConnection);
  }

  // Some window managers offer a minimise control whatever the hints say. A window that is minimised on
  // another desktop, or while the desktop is shown, returns when the user does or when it is moved to the
  // current desktop.
  void followState() {
    if (!isMinimized()) return returns_.reset();
    if (!returns_) returns_.emplace([this] { restoreOnceIdle(); });
    restoreOnceIdle();
  }

  void restoreOnceIdle() {
    const auto restore = [this] {
      if (isMinimized() && windowHandle() != nullptr && isMinimizedByUser(*windowHandle())) owner->restore();
    };
    QMetaObject::invokeMethod(this, restore, Qt::QueuedConnection);
  }

  WindowStyle style_;
  std::optional<DesktopWatch> returns_;  // set while minimised
};

class ContentView : public View {
 public:
  ContentView(Rect frame, WindowStyle style)
      : View(std::make_unique<Impl>(frame, std::make_unique<WindowWidget>(style))) {}
};

// Returns the desktop's colour of links, darker or lighter if necessary. A colour with less than the contrast
// of controls is meant for the opposite background, as is that of a dark desktop: returns `fallback` then.
QColor linkColorOn(const QColor& background, const QColor& ofDesktop, const QColor& fallback) {
  const bool suits = contrastRatio(ofDesktop, background) >= minControlContrast;
  return withContrast(suits ? ofDesktop : fallback, background, minTextContrast);
}

// Sets all roles, so that none follows the desktop's palette. The palette that Qt derives from one colour has
// a dark highlight, so the desktop's highlight roles are kept, and its colour of links as far as it is
// readable on this background.
QPalette paletteOn(const QColor& background) {
  QPalette palette(background, background);
  const QPalette desktop = QApplication::palette();
  for (const auto role : {QPalette::Highlight, QPalette::HighlightedText}) {
    palette.setColor(role, desktop.color(QPalette::Active, role));
  }
  palette.setColor(QPalette::Link, linkColorOn(background, desktop.color(QPalette::Active, QPalette::Link),
                                               palette.color(QPalette::Link)));
  palette.setColor(QPalette::Disabled, QPalette::Link,
                   palette.color(QPalette::Disabled, QPalette::WindowText));
  return palette;
}

// Sets whether Qt asks the window manager, with _NET_WM_USER_TIME 0, not to focus the window when it is
// shown. Qt copies WA_ShowWithoutActivating to the QWindow only when it creates the QWindow; this sets the
// copy, a dynamic property.
void setRequestsFocus(QWidget& widget, bool wants) {
  if (QWindow* window = widget.windowHandle())
    window->setProperty("_q_showWithoutActivating", wants ? QVariant() : QVariant(true));
}

}  // namespace

Window::Impl* implOf(const QWidget& window) {
  const auto* widget = dynamic_cast<const WindowWidget*>(&window);
  return widget == nullptr ? nullptr : widget->owner;
}

bool isWindowOfProgram(const QWidget& window) {
  return implOf(window) != nullptr;
}

bool isBlocked(const QWidget& widget) {
  return ModalStack::shared().blocks(*widget.window());
}

bool acceptsInput(const QWidget& widget) {
  const Window::Impl* window = implOf(*widget.window());
  return window == nullptr || (!window->sheets.isUp() && !isBlocked(widget));
}

void bringWindowsForward() {
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* window = dynamic_cast<WindowWidget*>(widget)) window->owner->raiseAndActivate();
  }
}

Window::Impl::Impl(Rect contentRect, WindowStyle ofStyle)
    : style(ofStyle),
      content(std::make_unique<ContentView>(Rect{0, 0, contentRect.width, contentRect.height}, style)),
      widget(*content->impl().widget),
      sheets(widget) {
  widget.setFixedSize(widget.size());
  static_cast<WindowWidget&>(widget).owner = this;
  describeWindowsToAccessibility();
}

void Window::Impl::willBeClosed() {
  closed = true;
  hiddenByInactivity = false;
  activity.reset();
  sheets.close();
  if (const auto tell = std::exchange(willClose, nullptr)) tell();
}

// Queued, because Qt still uses the widget that it is closing.
void Window::Impl::releaseOnceIdle() {
  QMetaObject::invokeMethod(
      qApp, [self = std::move(onScreen)] {}, Qt::QueuedConnection);
}

void Window::Impl::followActivity(bool active) {
  if (active) {
    if (!std::exchange(hiddenByInactivity, false)) return;
    setRequestsFocus(widget, false);
    reappear();
    setRequestsFocus(widget, true);
    // Some window managers place the shown window above the modal window.
    if (isBlocked(widget)) ModalStack::shared().raiseInnermost();
  } else if (widget.isVisible()) {
    hiddenByInactivity = true;
    placeBeforeHiding = widget.geometry();
    widget.hide();
  }
}

void Window::Impl::raiseAndActivate() {
  if (std::exchange(hiddenByInactivity, false)) {
    reappear();
    awaitsFirstPaint = true;
  } else if (widget.isVisible() && !widget.isMinimized()) {
    showImageUntilPainted();
  }
  if (!widget.isVisible()) return;
  if (widget.isMinimized()) appear(&QWidget::showNormal);
  widget.raise();
  widget.activateWindow();
}

// A part that another window covers shows that window's pixels when it is uncovered, until Qt paints it. A
// window that is about to appear already has its background image.
void Window::Impl::showImageUntilPainted() {
  if (awaitsFirstPaint) return;
  firstPicture.setBackground(widget);
  widget.update();
}

void Window::Impl::restore() {
  raiseAndActivate();
  if (isBlocked(widget)) ModalStack::shared().raiseInnermost();
}

// mutter leaves a hidden window at the place of its frame, so that it would rise by the height of its title
// bar each time.
void Window::Impl::reappear() {
  widget.setGeometry(placeBeforeHiding);
  appear(&QWidget::show);
}

// winId() creates the native window now: Qt may replace a window whose flags have changed since it was shown.
void Window::Impl::appear(void (QWidget::*show)()) {
  widget.winId();
  updateMotifHints();
  (widget.*show)();
  firstPicture.setBackground(widget);
  updateMotifHints();
}

void Window::Impl::updateMotifHints() {
  if (QWindow* window = widget.windowHandle()) setMotifHints(*window, style == WindowStyle::TitledClosable);
}

bool Window::Impl::isOnScreen() const {
  if (!widget.isVisible() || widget.isMinimized() || widget.windowHandle() == nullptr) return false;
  return awaitsFirstPaint || widget.windowHandle()->isExposed();
}

// Sets the flag on the QWindow: setting it on the widget would create a new native window.
void Window::Impl::setAboveOthers(bool above) {
  QWindow* window = widget.windowHandle();
  if (window == nullptr) return;
  window->setFlag(Qt::WindowStaysOnTopHint, above);
  updateMotifHints();
}

std::shared_ptr<Window> Window::make(Rect contentRect, WindowStyle style) {
  return std::shared_ptr<Window>(new Window(contentRect, style));
}

Window::Window(Rect contentRect, WindowStyle style) : impl_(std::make_unique<Impl>(contentRect, style)) {}

Window::~Window() {
  impl_.reset();
  // Returns free heap pages to the system: the destroyed images and widgets leave many behind.
  ::malloc_trim(0);
}

void Window::setTitle(std::string_view title) {
  impl_->widget.setWindowTitle(textOf(title));
}

void Window::setBackgroundColor(Color color) {
  impl_->widget.setPalette(paletteOn(qtColor(color)));
}

void Window::setHidesOnDeactivate(bool hides) {
  impl_->activity.reset();
  if (hides)
    impl_->activity = std::make_unique<ActivityWatch>([this](bool active) { impl_->followActivity(active); });
}

void Window::setWillClose(std::function<void()> willClose) {
  impl_->willClose = std::move(willClose);
}

View& Window::contentView() const {
  return *impl_->content;
}

void Window::center() {
  QRect place(QPoint(0, 0), impl_->widget.size());
  place.moveCenter(QGuiApplication::primaryScreen()->availableGeometry().center());
  impl_->widget.setGeometry(place);
}

void Window::makeKeyAndOrderFront() {
  if (impl_->closed || impl_->hiddenByInactivity) return;
  impl_->onScreen = shared_from_this();
  setTabOrderByPlace(*impl_->content);
  if (!impl_->widget.isVisible()) {
    impl_->appear(&QWidget::show);
    impl_->awaitsFirstPaint = true;
  } else {
    impl_->showImageUntilPainted();
  }
  impl_->widget.raise();
  impl_->widget.activateWindow();
}

void Window::orderOut() {
  impl_->hiddenByInactivity = false;
  impl_->widget.hide();
  settleXRequests();
  // `self` may be the last reference, so do not use this object after it.
  const auto self = std::move(impl_->onScreen);
}

void Window::close() {
  if (impl_->closed) return;
  const auto self = shared_from_this();
  impl_->willBeClosed();
  orderOut();
}

bool Window::isVisible() const {
  return impl_->widget.isVisible();
}

}  // namespace platform
