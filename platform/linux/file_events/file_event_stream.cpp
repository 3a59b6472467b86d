#include "platform/file_event_stream.h"

#include <optional>
#include <set>
#include <utility>
#include <vector>

#include <QSocketNotifier>
#include <QTimer>

#include "platform/linux/file_events/folder_tree_watch.h"
#include "platform/linux/file_events/root_watch.h"

namespace platform {

struct FileEventStream::Impl {
  Impl(std::string rootPath, std::chrono::milliseconds wait, Callback told, RootWatch watch)
      : path(std::move(rootPath)), callback(std::move(told)), root(std::move(watch)) {
    tree.emplace(path);
    latency.setTimerType(Qt::PreciseTimer);
    latency.setSingleShot(true);
    latency.setInterval(wait);
    QObject::connect(&latency, &QTimer::timeout, &latency, [this] { deliver(); });
  }

  void start();
  void stop();
  void listen(std::unique_ptr<QSocketNotifier>& notifier, int descriptor, QSocketNotifier::Type type);
  void wake();
  void takeIn();
  void note(FileEvent event);
  void watchTreeAnew();
  void deliver();

  FileEventStream* stream = nullptr;
  std::string path;
  Callback callback;
  std::optional<RootWatch> root;
  std::optional<FolderTreeWatch> tree;
  std::unique_ptr<QSocketNotifier> treeNotices;
  std::unique_ptr<QSocketNotifier> rootNotices;
  std::unique_ptr<QSocketNotifier> mountNotices;
  QTimer latency;
  std::vector<FileEvent> batch;
  std::set<std::pair<std::string, std::uint32_t>> inBatch;
  bool treeIsIncomplete = false;
  bool rootIsAway = false;  // result of the last check; may revert before the batch is delivered
};

void FileEventStream::Impl::start() {
  if (!root || rootNotices != nullptr) return;
  listen(treeNotices, tree->descriptor(), QSocketNotifier::Read);
  listen(rootNotices, root->folders(), QSocketNotifier::Read);
  listen(mountNotices, root->mounts(), QSocketNotifier::Exception);
}

void FileEventStream::Impl::stop() {
  latency.stop();
  treeNotices.reset();
  rootNotices.reset();
  mountNotices.reset();
  tree.reset();
  root.reset();
  batch.clear();
  inBatch.clear();
}

void FileEventStream::Impl::listen(std::unique_ptr<QSocketNotifier>& notifier, int descriptor,
                                   QSocketNotifier::Type type) {
  if (descriptor < 0) return;
  notifier = std::make_unique<QSocketNotifier>(descriptor, type);
  QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(), [this] { wake(); });
}

void FileEventStream::Impl::wake() {
  takeIn();
  if ((!batch.empty() || rootIsAway) && !latency.isActive()) latency.start();
}

// Reads the events of the tree before those of the root: the entries of a folder are removed before the
// folder itself.
void FileEventStream::Impl::takeIn() {
  if (tree->takeChanges([this](const std::string& folder) { note({folder, 0}); })) {
    treeIsIncomplete = true;
    note({path, mustScanSubDirs});
  }
  rootIsAway = root->hasChanged();
}

void FileEventStream::Impl::note(FileEvent event) {
  if (inBatch.emplace(event.path, event.flags).second) batch.push_back(std::move(event));
}

// Frees the old watches first: the limits of inotify may not allow two sets.
void FileEventStream::Impl::watchTreeAnew() {
  treeIsIncomplete = false;
  treeNotices.reset();
  tree.reset();
  tree.emplace(path);
  listen(treeNotices, tree->descriptor(), QSocketNotifier::Read);
}

void FileEventStream::Impl::deliver() {
  takeIn();
  if (rootIsAway) note({path, rootChanged});
  if (batch.empty()) return;
  const auto events = std::exchange(batch, {});
  inBatch.clear();
  if (rootIsAway) {
    stop();
  } else if (treeIsIncomplete) {
    watchTreeAnew();
  }
  // The callback may destroy the stream and this object with it, so call a copy.
  const auto told = callback;
  told(*stream, events);
}

std::shared_ptr<FileEventStream> FileEventStream::create(const std::string& path,
                                                         std::chrono::milliseconds latency,
                                                         Callback callback) {
  auto root = RootWatch::create(path);
  if (!root) return nullptr;
  return std::shared_ptr<FileEventStream>(
      new FileEventStream(std::make_unique<Impl>(path, latency, std::move(callback), std::move(*root))));
}

FileEventStream::FileEventStream(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {
  impl_->stream = this;
}
FileEventStream::~FileEventStream() = default;

void FileEventStream::start() {
  impl_->start();
}

void FileEventStream::stop() {
  impl_->stop();
}

}  // namespace platform
