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
  Impl(std::string rootPath, std::chrono::milliseconds wait, Callback onEvents, RootWatch watch)
      : path(std::move(rootPath)), callback(std::move(onEvents)), root(std::move(watch)) {
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
  void readEvents();
  void note(FileEvent event);
  void rewatchTree();
  void deliver();

  FileEventStream* stream = nullptr;
  std::string path;
  Callback callback;
  std::optional<RootWatch> root;
  std::optional<FolderTreeWatch> tree;
  std::unique_ptr<QSocketNotifier> treeNotifier;
  std::unique_ptr<QSocketNotifier> rootNotifier;
  std::unique_ptr<QSocketNotifier> mountNotifier;
  QTimer latency;
  std::vector<FileEvent> batch;
  std::set<std::pair<std::string, std::uint32_t>> inBatch;
  bool treeIsIncomplete = false;
  bool rootIsGone = false;  // result of the last check; may revert before the batch is delivered
};

void FileEventStream::Impl::start() {
  if (!root || rootNotifier != nullptr) return;
  listen(treeNotifier, tree->descriptor(), QSocketNotifier::Read);
  listen(rootNotifier, root->folders(), QSocketNotifier::Read);
  listen(mountNotifier, root->mounts(), QSocketNotifier::Exception);
}

void FileEventStream::Impl::stop() {
  latency.stop();
  treeNotifier.reset();
  rootNotifier.reset();
  mountNotifier.reset();
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
  readEvents();
  if ((!batch.empty() || rootIsGone) && !latency.isActive()) latency.start();
}

// Reads the events of the tree before those of the root: the entries of a folder are removed before the
// folder itself.
void FileEventStream::Impl::readEvents() {
  if (tree->takeChanges([this](const std::string& folder) { note({folder, 0}); })) {
    treeIsIncomplete = true;
    note({path, mustScanSubDirs});
  }
  rootIsGone = root->hasChanged();
}

void FileEventStream::Impl::note(FileEvent event) {
  if (inBatch.emplace(event.path, event.flags).second) batch.push_back(std::move(event));
}

// Frees the old watches first: the limits of inotify may not allow two sets.
void FileEventStream::Impl::rewatchTree() {
  treeIsIncomplete = false;
  treeNotifier.reset();
  tree.reset();
  tree.emplace(path);
  listen(treeNotifier, tree->descriptor(), QSocketNotifier::Read);
}

void FileEventStream::Impl::deliver() {
  readEvents();
  if (rootIsGone) note({path, rootChanged});
  if (batch.empty()) return;
  const auto events = std::exchange(batch, {});
  inBatch.clear();
  if (rootIsGone) {
    stop();
  } else if (treeIsIncomplete) {
    rewatchTree();
  }
  // The callback may destroy the stream and this object with it, so call a copy.
  const auto callbackCopy = callback;
  callbackCopy(*stream, events);
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
