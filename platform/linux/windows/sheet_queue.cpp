#include "platform/linux/windows/sheet_queue.h"

#include <utility>

#include "platform/linux/windows/posted_work.h"

namespace platform {

void SheetQueue::begin(SheetContent content, std::function<void(int)> didEnd) {
  if (closed_) return;
  waiting_.push_back({std::move(content), std::move(didEnd)});
  showNext();
}

void SheetQueue::showNext() {
  if (current_ != nullptr || waiting_.empty()) return;
  Waiting next = std::move(waiting_.front());
  waiting_.pop_front();
  current_ =
      std::make_unique<Sheet>(window_, inputMark_, next.content,
                              [this, didEnd = std::move(next.didEnd)](int index) { end(index, didEnd); });
  current_->open();
}

// The window is the context object of the queued call, which is dropped if the window is destroyed.
void SheetQueue::end(int index, const std::function<void(int)>& didEnd) {
  if (current_ == nullptr) return;
  ++pendingEnds_;
  QMetaObject::invokeMethod(
      &window_, [this, index, didEnd] { reportEnd(index, didEnd); }, Qt::QueuedConnection);
  closeCurrent();
}

void SheetQueue::reportEnd(int index, const std::function<void(int)>& didEnd) {
  if (closed_) return;
  window_.repaint();  // didEnd may block the main thread
  const QPointer<QWidget> window(&window_);
  didEnd(index);
  if (window == nullptr) return;
  // Work that didEnd has posted runs before the window's events that arrived meanwhile, and those events must
  // not answer a sheet opened by that work. If the work stops a modal run, its rest runs later; therefore
  // finishEnd is posted behind it.
  inputMark_.set();
  PostedWork& postedWork = PostedWork::shared();
  postedWork.post([this, window] {
    if (window != nullptr) finishEnd();
  });
  postedWork.serve();
}

void SheetQueue::finishEnd() {
  --pendingEnds_;
  showNext();
}

void SheetQueue::closeCurrent() {
  current_->dismiss();
  current_.release()->deleteLater();
}

void SheetQueue::close() {
  closed_ = true;
  waiting_.clear();
  if (current_ != nullptr) closeCurrent();
}

}  // namespace platform
