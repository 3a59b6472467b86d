#include "platform/button.h"

#include <algorithm>
#include <utility>

#include <QPointer>

#include "platform/linux/windows/bezel_button.h"
#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/view_impl.h"
#include "platform/linux/windows/window_impl.h"

namespace platform {
namespace {

constexpr int sideMargin = 6;
constexpr double titleSize = 13;

// The bezel, which is smaller than the button's frame, also bounds the clickable area.
class PushButton : public BezelButton {
 public:
  std::function<void()> action;

  PushButton() {
    setFont(systemFont(font(), titleSize));
    setAutoDefault(true);  // Return clicks the focused button
    // An accessibility interface emits clicked() some time after pressed(). Check at both signals whether the
    // button accepts input.
    connect(this, &QPushButton::pressed, this, [this] { acceptedInputAtPress_ = acceptsInput(*this); });
    connect(this, &QPushButton::clicked, this, [this] { act(); });
  }

  // Restores the input focus that Qt moved to another widget when the button was disabled, if that widget
  // still has it.
  void enable(bool enabled) {
    const bool hadFocus = window()->focusWidget() == this;
    setEnabled(enabled);
    if (enabled) {
      if (std::exchange(lostFocus_, false) && window()->focusWidget() == focusSuccessor_) setFocus();
    } else if (hadFocus) {
      lostFocus_ = true;
      focusSuccessor_ = window()->focusWidget();
    }
  }

 protected:
  [[nodiscard]] QRect bezel() const override {
    const int drawnHeight = std::min(bezelHeight, height());
    return {sideMargin, (height() - drawnHeight) / 2, width() - 2 * sideMargin, drawnHeight};
  }

 private:
  // Repaints the button as released first, because the action may take seconds. Calls a copy, because the
  // action may replace itself or destroy the button.
  void act() {
    repaint();
    const auto work = action;
    if (work && acceptedInputAtPress_ && acceptsInput(*this)) work();
  }

  bool acceptedInputAtPress_ = false;
  bool lostFocus_ = false;
  QPointer<QWidget> focusSuccessor_;
};

PushButton& pushButton(const Button& button) {
  return static_cast<PushButton&>(*button.impl().widget);
}

}  // namespace

Button::Button(Rect frame) : View(std::make_unique<Impl>(frame, std::make_unique<PushButton>())) {}

void Button::setTitle(std::string_view title) {
  pushButton(*this).setText(withoutMnemonic(textOf(title)));
}

void Button::setEnabled(bool enabled) {
  pushButton(*this).enable(enabled);
}

// While a sheet is up, all buttons of its window are disabled in addition.
bool Button::isEnabled() const {
  return !pushButton(*this).testAttribute(Qt::WA_ForceDisabled);
}

void Button::setBezelStyle(BezelStyle) {}

void Button::setAction(std::function<void()> action) {
  pushButton(*this).action = std::move(action);
}

}  // namespace platform
