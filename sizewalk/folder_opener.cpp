#include "sizewalk/folder_opener.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <string>
#include <utility>

#include "sizewalk/directory_reader.h"
#include "sizewalk/retry.h"

namespace sizewalk {

namespace {

/// A reader in need looks again this often, for other parts of the program have descriptors too.
constexpr auto kLookAgain = std::chrono::milliseconds(10);

constexpr int kPassFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool outOfDescriptors(int error) { return error == EMFILE || error == ENFILE; }

std::size_t keptWithin(std::size_t most, std::size_t share) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return most;
  return static_cast<std::size_t>(std::min<rlim_t>(most, limit.rlim_cur / share));
}

/// The greatest power of two that divides `depth`; for the start more than for any other.
std::uint64_t strideOf(std::size_t depth) {
  return depth == 0 ? std::uint64_t{1} << 63 : depth & (~depth + 1);
}

/// Needs one descriptor and no other; fails where a symbolic link is anywhere on the way, and on
/// kernels before 5.6.
base::FileDescriptor openWholePath(const std::string& path) {
  open_how how{};
  how.flags = kListingFlags;
  how.resolve = RESOLVE_NO_SYMLINKS;
  return base::FileDescriptor(static_cast<int>(retryInterrupted(
      [&] { return syscall(SYS_openat2, AT_FDCWD, path.c_str(), &how, sizeof how); })));
}

}  // namespace

FolderOpener::FolderOpener(const FileTree& tree, NodeId start, const std::atomic<bool>& stop)
    : tree_(tree), start_(start), stop_(stop), mostKept_(keptWithin(kMostKept, kShareKept)) {
  kept_.reserve(kMostKept);
}

/// A folder's number is above that of the one that holds it, so on the way up what is kept is
/// passed once, from its end.
void FolderOpener::find(NodeId folder, FolderWay* way) {
  way->below.assign(1, folder);
  way->base = nullptr;
  way->firstDepth = 0;
  const base::MutexLock lock(mutex_);
  auto next = kept_.rbegin();
  while (way->below.back() != start_) {
    const NodeId holder = tree_.parent(way->below.back());
    while (next != kept_.rend() && next->folder > holder) ++next;
    if (next != kept_.rend() && next->folder == holder) {
      next->lastUse = ++uses_;
      way->base = next->fd;
      way->firstDepth = next->depth + 1;
      return;
    }
    way->below.push_back(holder);
  }
}

base::FileDescriptor FolderOpener::open(FolderWay* way) {
  ++begun_;
  ++active_;
  base::FileDescriptor fd = openAlong(*way, Keeping::Allowed);
  const bool inNeed = !fd.valid() && outOfDescriptors(errno);
  way->base = nullptr;  // or who waits for a descriptor would wait for this one
  return inNeed ? openInNeed(way->folder()) : std::move(fd);
}

void FolderOpener::giveBack(const FolderWay& way, base::FileDescriptor fd, Use use) {
  if (fd.valid() && use == Use::HoldsFolders) keep(way.folder(), way.depth(), std::move(fd));
  fd.close();
  --active_;
  if (inNeed_ > 0) gaveBack_.notifyAll();
}

base::FileDescriptor FolderOpener::openAlong(const FolderWay& way, Keeping keeping) {
  Shared holder = way.base;
  for (std::size_t left = way.below.size(); left > 1; --left) {
    const NodeId folder = way.below[left - 1];
    base::FileDescriptor fd = openNext(holder.get(), folder, kPassFlags);
    if (!fd.valid()) return fd;
    holder = keeping == Keeping::Allowed
                 ? keep(folder, way.firstDepth + way.below.size() - left, std::move(fd))
                 : std::make_shared<const base::FileDescriptor>(std::move(fd));
  }
  return openNext(holder.get(), way.folder(), kListingFlags);
}

base::FileDescriptor FolderOpener::openNext(const base::FileDescriptor* holder, NodeId folder,
                                            int flags) {
  opens_.fetch_add(1, std::memory_order_relaxed);
  if (!holder) return openDirectory(tree_.path(folder));
  const std::string name(tree_.name(folder));
  return base::FileDescriptor(
      retryInterrupted([&] { return openat(holder->get(), name.c_str(), flags); }));
}

/// One reader at a time, or two could take each other's last descriptor for ever. It gives up where
/// not even the only one in the walk finds enough.
base::FileDescriptor FolderOpener::openInNeed(NodeId folder) {
  --active_;
  enterNeed();
  base::FileDescriptor fd;
  {
    const base::MutexLock lock(needMutex_);
    while (true) {
      const std::uint64_t begun = begun_;
      const bool noneBefore = active_ == 0;
      fd = openWithFewest(folder);
      const bool alone = noneBefore && begun_ == begun;
      if (fd.valid() || !outOfDescriptors(errno) || alone || stop_) break;
      gaveBack_.waitUntil(needMutex_, std::chrono::steady_clock::now() + kLookAgain);
    }
    ++active_;
  }
  leaveNeed();
  return fd;
}

/// From the start, with two descriptors at a time, or with a single one.
base::FileDescriptor FolderOpener::openWithFewest(NodeId folder) {
  FolderWay way;
  way.below.push_back(folder);
  while (way.below.back() != start_) way.below.push_back(tree_.parent(way.below.back()));
  base::FileDescriptor fd = openAlong(way, Keeping::Forbidden);
  if (fd.valid() || !outOfDescriptors(errno)) return fd;
  const int error = errno;
  opens_.fetch_add(1, std::memory_order_relaxed);
  fd = openWholePath(tree_.path(folder));
  errno = error;
  return fd;
}

FolderOpener::Shared FolderOpener::keep(NodeId folder, std::size_t depth, base::FileDescriptor fd) {
  Shared shared = std::make_shared<const base::FileDescriptor>(std::move(fd));
  Shared closedAfterUnlocking;
  const base::MutexLock lock(mutex_);
  if (inNeed_ > 0 || mostKept_ == 0) return shared;
  if (std::ranges::binary_search(kept_, folder, {}, &Kept::folder)) return shared;
  if (kept_.size() >= mostKept_) closedAfterUnlocking = makeRoom();
  const auto place = std::ranges::lower_bound(kept_, folder, {}, &Kept::folder);
  kept_.insert(place, {folder, depth, ++uses_, shared});
  return shared;
}

/// Removes and returns what is worth least.
FolderOpener::Shared FolderOpener::makeRoom() {
  const auto age = [now = uses_](const Kept& kept) {
    return (now - kept.lastUse) / strideOf(kept.depth);
  };
  const auto oldest = std::ranges::max_element(kept_, {}, age);
  Shared fd = std::move(oldest->fd);
  kept_.erase(oldest);
  return fd;
}

void FolderOpener::enterNeed() {
  std::vector<Kept> closedAfterUnlocking;
  const base::MutexLock lock(mutex_);
  ++inNeed_;
  mostKept_ /= 2;
  closedAfterUnlocking.swap(kept_);
}

void FolderOpener::leaveNeed() {
  const base::MutexLock lock(mutex_);
  --inNeed_;
}

}  // namespace sizewalk
