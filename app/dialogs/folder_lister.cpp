#include "app/dialogs/folder_lister.h"

#include <chrono>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "base/mutex.h"

namespace app {

namespace {
/// How long an answer counts as coming at once: too short to be felt, long enough for any folder of
/// a usual size.
constexpr std::chrono::milliseconds kAtOnce{25};
}  // namespace

struct FolderLister::Shared {
  Shared(Post postTo, List listWith) : list(std::move(listWith)), post(std::move(postTo)) {}

  /// The work of one thread.
  void answer(const FolderLister* lister, const std::string& path) EXCLUDES(mutex);
  bool startThread(const FolderLister* lister, const std::shared_ptr<Shared>& self,
                   const std::string& path) REQUIRES(mutex);

  const List list;
  base::Mutex mutex;            // guards the members below, and is held while an answer is posted
  base::CondVar answered;       // `atOnce` was set
  Post post GUARDED_BY(mutex);  // empty once the lister is gone
  std::set<std::string> outstanding GUARDED_BY(mutex);  // folders that owe an answer
  /// The folder whose answer the lister is waiting for, and that answer.
  std::optional<std::string> waitedFor GUARDED_BY(mutex);
  std::optional<FolderListing> atOnce GUARDED_BY(mutex);
};

void FolderLister::Shared::answer(const FolderLister* lister, const std::string& path) {
  FolderListing listing = list(path);
  const base::MutexLock lock(mutex);
  outstanding.erase(path);
  if (waitedFor == path) {
    atOnce = std::move(listing);
    waitedFor.reset();
    answered.notifyOne();
  } else if (post) {
    post([lister, path, listing = std::move(listing)]() mutable {
      lister->handOn(path, std::move(listing));
    });
  }
}

/// False when there is none to be had.
bool FolderLister::Shared::startThread(const FolderLister* lister,
                                       const std::shared_ptr<Shared>& self,
                                       const std::string& path) {
  if (!outstanding.insert(path).second) return true;
  try {
    // Detached: joining would wait for a server that is gone.
    std::thread([self, lister, path] { self->answer(lister, path); }).detach();
    return true;
  } catch (const std::system_error&) {
    outstanding.erase(path);
    return false;
  }
}

FolderLister::FolderLister(Post post, List list)
    : shared_(std::make_shared<Shared>(std::move(post), std::move(list))) {}

FolderLister::~FolderLister() {
  const base::MutexLock lock(shared_->mutex);
  shared_->post = nullptr;
}

std::optional<FolderListing> FolderLister::list(const std::string& path) {
  const auto deadline = std::chrono::steady_clock::now() + kAtOnce;
  const base::MutexLock lock(shared_->mutex);
  if (!shared_->startThread(this, shared_, path)) {
    return FolderListing{.readable = false, .subFolders = {}};
  }
  shared_->waitedFor = path;
  while (!shared_->atOnce && shared_->answered.waitUntil(shared_->mutex, deadline)) {
  }
  shared_->waitedFor.reset();
  return std::exchange(shared_->atOnce, std::nullopt);
}

void FolderLister::handOn(const std::string& path, FolderListing listing) const {
  if (onListed) onListed(path, std::move(listing));
}

}  // namespace app
