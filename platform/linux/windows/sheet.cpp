#include "platform/linux/windows/sheet.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <QHBoxLayout>
#include <QInputEvent>
#include <QLabel>
#include <QPainter>

#include "platform/linux/windows/bezel_button.h"
#include "platform/linux/windows/input_mark.h"
#include "platform/linux/windows/sheet_panel.h"
#include "platform/linux/windows/text_impl.h"
#include "platform/linux/windows/window_impl.h"

namespace platform {
namespace {

constexpr int maxPanelWidth = 420, windowMargin = 20, margin = 20, gap = 16;
constexpr int bezelWidth = 100;
constexpr int ringMargin = BezelButton::ringMargin;
constexpr double fontSize = 13;
constexpr QColor shade(0, 0, 0, 60);

// Starts each sentence on a line of its own, so that no line ends after the first words of a sentence.
QString onePerLine(QString sentences) {
  return sentences.replace(QLatin1StringView(". "), QLatin1StringView(".\n"));
}

QLabel* messageLabel(const QString& message) {
  auto* label = new QLabel(onePerLine(message));
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setFont(systemFont(label->font(), Font(fontSize, true)));
  return label;
}

QLabel* iconLabel(const QPixmap& icon) {
  auto* label = new QLabel;
  label->setPixmap(icon);
  label->setAlignment(Qt::AlignTop);
  return label;
}

std::optional<std::size_t> indexOfEscape(const std::vector<QString>& titles) {
  for (const auto* title : {"Cancel", "Close"}) {
    const auto found = std::ranges::find(titles, QLatin1StringView(title));
    if (found != titles.end()) return static_cast<std::size_t>(found - titles.begin());
  }
  return std::nullopt;
}

}  // namespace

Sheet::Sheet(QWidget& window, const InputMark& mark, const SheetContent& content,
             std::function<void(int)> chosen)
    : QWidget(&window), window_(window), mark_(mark), chosen_(std::move(chosen)) {
  auto* panel = new SheetPanel(*this);
  panel_ = panel;
  panel_->installEventFilter(this);
  panel_->setAccessibleName(content.message);
  addButtons(content);
  if (const auto index = indexOfEscape(content.buttons)) panel->escapeButton = buttons_[*index];
  layOut(content);
}

void Sheet::addButtons(const SheetContent& content) {
  for (const QString& title : content.buttons) {
    auto* button = new BezelButton(withoutMnemonic(title), panel_);
    button->setFont(systemFont(button->font(), fontSize));
    button->setMinimumSize(bezelWidth + 2 * ringMargin, BezelButton::bezelHeight + 2 * ringMargin);
    button->installEventFilter(this);
    const int index = static_cast<int>(buttons_.size());
    connect(button, &QPushButton::clicked, this, [this, index] {
      if (!isBlocked(*this)) chosen_(index);
    });
    buttons_.push_back(button);
  }
  buttons_.front()->setDefault(true);
}

// The default button is rightmost. Distances are measured between bezels.
void Sheet::layOut(const SheetContent& content) {
  auto* row = new QHBoxLayout;
  row->setSpacing(gap / 2 - 2 * ringMargin);
  row->addStretch();
  for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) row->addWidget(*button);

  auto* column = new QVBoxLayout;
  column->setSpacing(gap - ringMargin);
  column->addWidget(messageLabel(content.message), 1, Qt::AlignTop);
  column->addLayout(row);

  auto* layout = new QHBoxLayout(panel_);
  layout->setContentsMargins(margin, margin, margin - ringMargin, margin - ringMargin);
  layout->setSpacing(gap);
  if (!content.icon.isNull()) layout->addWidget(iconLabel(content.icon));
  layout->addLayout(column, 1);

  setGeometry(window_.rect());
  const int panelWidth = std::min(width() - 2 * windowMargin, maxPanelWidth);
  panel_->setGeometry((width() - panelWidth) / 2, 0, panelWidth, layout->totalHeightForWidth(panelWidth));
}

void Sheet::open() {
  focusBefore_ = window_.focusWidget();
  show();
  raise();
  buttons_.front()->setFocus();
  disableBehind();
}

// The sheet covers the window and so intercepts clicks and keys. The properties are what assistive technology
// sees and respects.
void Sheet::disableBehind() {
  for (QWidget* part : window_.findChildren<QWidget*>()) {
    if (part == this || isAncestorOf(part)) continue;
    behind_.push_back({part, part->focusPolicy(), part->testAttribute(Qt::WA_ForceDisabled)});
    part->setFocusPolicy(Qt::NoFocus);
  }
  for (QWidget* part : window_.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    if (part != this) part->setEnabled(false);
}

void Sheet::enableBehind() {
  for (const auto& [part, focusPolicy, isDisabled] : std::exchange(behind_, {})) {
    if (part == nullptr) continue;
    part->setFocusPolicy(focusPolicy);
    if (part->parentWidget() == &window_) part->setEnabled(!isDisabled);
  }
}

// Moves the input focus before hiding: otherwise Qt would move it to another widget in the sheet.
void Sheet::dismiss() {
  enableBehind();
  const bool returns = focusBefore_ != nullptr && focusBefore_->isEnabled();
  (returns ? focusBefore_.get() : &window_)->setFocus();
  hide();
}

bool Sheet::focusNextPrevChild(bool next) {
  const auto focused = std::ranges::find_if(buttons_, [](const auto* button) { return button->hasFocus(); });
  const auto count = static_cast<std::ptrdiff_t>(buttons_.size());
  const auto index = focused == buttons_.end() ? -1 : focused - buttons_.begin();
  const auto following = next ? (index + 1) % count : (index <= 0 ? count : index) - 1;
  buttons_[static_cast<std::size_t>(following)]->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
  return true;
}

bool Sheet::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
      return mark_.isAfter(*static_cast<QInputEvent*>(event));
    default:
      return false;
  }
}

void Sheet::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), shade);
  drawShadow(painter, panel_->geometry());
}

}  // namespace platform
