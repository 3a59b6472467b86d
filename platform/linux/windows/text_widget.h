#pragma once

#include <optional>

#include <QLabel>

#include "platform/linux/windows/key_repeat.h"
#include "platform/text_view.h"

namespace platform {

// Implementation of TextView: a label with plain text, or text drawn and made clickable by its attributes.
// Main thread only.
class TextWidget : public QLabel {
 public:
  TextWidget();

  void showPlain(const QString& text);
  void showAttributed(const QString& text, TextAttributes attributes);
  void setSelectable(bool selectable);
  void setTruncatesTail(bool truncates);
  // Increases the height to fit the text. Never shrinks.
  void resizeToText();

  [[nodiscard]] bool isLink() const { return attributes_ && !attributes_->link.empty(); }
  // Opens the link in the browser. No-op if there is none.
  void openLink() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  void updateInteraction();
  [[nodiscard]] int layoutFlags() const;
  // Returns the area for an attributed text, inside the frame.
  [[nodiscard]] QRect lineArea() const;
  [[nodiscard]] QColor textColor() const;
  [[nodiscard]] QString shownText() const;
  [[nodiscard]] QRect textArea() const;

  std::optional<TextAttributes> attributes_;
  bool selectable_ = true;
  bool truncates_ = false;
  bool pressed_ = false;
  KeyRepeat keyRepeat_;
};

}  // namespace platform
