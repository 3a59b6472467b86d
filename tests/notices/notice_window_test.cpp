#include "notices/notice_window.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include <QGuiApplication>
#include <QLabel>
#include <QWidget>

#include "platform/linux/windows/view_impl.h"
#include "platform/window.h"

namespace {

struct Expectation {
  const NoticeLayout& layout;
  int width;
  QRect rightPane;
  QRect field;  // from the upper left corner, as in Qt
  const char* text;
  int lines;
};

class NoticeWindow : public testing::TestWithParam<Expectation> {
 protected:
  [[nodiscard]] static QList<QWidget*> childrenOf(const QWidget& parent) {
    return parent.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  }

  std::shared_ptr<platform::Window> window_ = makeNoticeWindow(GetParam().layout);
  QWidget& content_ = *window_->contentView().impl().widget;
};

TEST_P(NoticeWindow, HasSizeAndTitleAndIsHidden) {
  EXPECT_EQ(content_.size(), QSize(GetParam().width, 80));
  EXPECT_EQ(content_.windowTitle(), QStringLiteral("Tovalin Notification"));
  EXPECT_FALSE(window_->isVisible());
}

TEST_P(NoticeWindow, HasLeftPaneThenRightPane) {
  const auto panes = childrenOf(content_);
  ASSERT_EQ(panes.size(), 2);
  EXPECT_EQ(panes[0]->geometry(), QRect(0, 0, 90, 80));
  EXPECT_EQ(panes[1]->geometry(), GetParam().rightPane);
}

TEST_P(NoticeWindow, LeftPaneHasIconWithAccessibleName) {
  const auto inside = childrenOf(*childrenOf(content_)[0]);
  ASSERT_EQ(inside.size(), 1);
  EXPECT_EQ(inside[0]->geometry(), QRect(15, 10, 60, 60));
  EXPECT_EQ(inside[0]->accessibleName(), QStringLiteral("Tovalin"));
  // The icon is not of a single colour, hence drawn.
  const QImage drawn = inside[0]->grab().toImage();
  EXPECT_NE(drawn.pixelColor(drawn.width() / 2, drawn.height() / 2), drawn.pixelColor(0, 0));
}

TEST_P(NoticeWindow, RightPaneHasCompleteText) {
  const auto inside = childrenOf(*childrenOf(content_)[1]);
  ASSERT_EQ(inside.size(), 1);
  const auto* label = qobject_cast<QLabel*>(inside[0]);
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->geometry(), GetParam().field);
  EXPECT_EQ(label->text(), QString::fromUtf8(GetParam().text));
  EXPECT_EQ(label->font().pixelSize(), 14);
  EXPECT_TRUE(label->alignment() & Qt::AlignLeft);
  EXPECT_EQ(label->textInteractionFlags(), Qt::NoTextInteraction);
  EXPECT_FALSE(label->autoFillBackground());
  EXPECT_EQ(label->frameShape(), QFrame::NoFrame);
  const QSize wanted = label->sizeHint();
  EXPECT_LE(wanted.height(), label->height());
  EXPECT_LE(wanted.width(), label->parentWidget()->width() - label->x());
  EXPECT_GE(wanted.height(), GetParam().lines * label->fontMetrics().lineSpacing());
}

INSTANTIATE_TEST_SUITE_P(Both, NoticeWindow,
                         testing::Values(Expectation{deviceAccessNotice, 420, QRect(90, 0, 330, 80),
                                                     QRect(5, 16, 330, 50),
                                                     "To allow access,\nplease respond on your iDevice.", 2},
                                         Expectation{loadingNotice, 260, QRect(90, 0, 170, 80),
                                                     QRect(5, 28, 150, 30), "Now Loading...", 1}),
                         [](const auto& test) { return test.index == 0 ? "DeviceAccess" : "Loading"; });

}  // namespace
