#include "sizewalk/folder_opener.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <limits>
#include <string>
#include <utility>

#include "sizewalk/directory_reader.h"
#include "sizewalk/retry.h"

namespace sizewalk {

namespace {

/// A reader in need looks again this often, for other parts of the program have descriptors too.
constexpr auto kLookAgain = std::chrono::milliseconds(10);

/// Of the depths of which a folder stays open also when those in it were opened.
constexpr int kLastingStrideLogarithm = 3;
constexpr std::size_t kMany = std::numeric_limits<std::size_t>::max();

// Of `openings_`.
constexpr std::uint64_t kActive = 1;
constexpr std::uint64_t kCall = std::uint64_t{1} << 32;

constexpr int kPassFlags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

bool outOfDescriptors(int error) { return error == EMFILE || error == ENFILE; }

std::size_t keptWithin(std::size_t most, std::size_t share) {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return most;
  return static_cast<std::size_t>(std::min<rlim_t>(most, limit.rlim_cur / share));
}

/// Of the greatest power of two that divides `depth`, the logarithm; for the start more than for
/// any other.
int strideLogarithm(std::size_t depth) {
  return depth == 0 ? std::numeric_limits<std::uint64_t>::digits - 1 : std::countr_zero(depth);
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
  openings_ += kCall + kActive;  // the way's base is a descriptor that others may wait for
  way->below.assign(1, folder);
  way->base = nullptr;
  way->firstDepth = 0;
  const base::MutexLock lock(mutex_);
  auto next = kept_.rbegin();
  while (way->below.back() != start_) {
    const NodeId holder = tree_.parent(way->below.back());
    while (next != kept_.rend() && next->folder > holder) ++next;
    if (next != kept_.rend() && next->folder == holder) {
      way->base = next->fd;
      way->firstDepth = next->depth + 1;
      noteUse(std::next(next).base(), *way);
      return;
    }
    way->below.push_back(holder);
  }
}

void FolderOpener::noteUse(std::vector<Kept>::iterator holder, const FolderWay& way) {
  holder->lastUse = ++uses_;
  const bool opensOneInIt = way.below.size() == 1;
  if (!opensOneInIt || --holder->unopened > 0) return;
  if (strideLogarithm(holder->depth) < kLastingStrideLogarithm) kept_.erase(holder);
}

base::FileDescriptor FolderOpener::open(FolderWay* way) {
  base::FileDescriptor fd = openAlong(way, Keeping::Allowed);
  const bool inNeed = !fd.valid() && outOfDescriptors(errno);
  way->base = nullptr;  // or who waits for a descriptor would wait for this one
  return inNeed ? openInNeed(way) : std::move(fd);
}

void FolderOpener::giveBack(const FolderWay& way, base::FileDescriptor fd, std::size_t subfolders) {
  if (fd.valid() && subfolders > 0) {
    keep(way.folder(), way.depth(), subfolders, std::move(fd));
  } else {
    fd.close();
  }
  openings_ -= kActive;
  if (inNeed_ > 0) gaveBack_.notifyAll();
}

base::FileDescriptor FolderOpener::openAlong(FolderWay* way, Keeping keeping) {
  Shared holder = way->base;
  way->opens += way->below.size();
  for (std::size_t left = way->below.size(); left > 1; --left) {
    const NodeId folder = way->below[left - 1];
    base::FileDescriptor fd = openNext(holder.get(), folder, kPassFlags);
    if (!fd.valid()) return fd;
    const std::size_t depth = way->firstDepth + way->below.size() - left;
    holder = keeping == Keeping::Allowed
                 ? keep(folder, depth, kMany, std::move(fd))
                 : std::make_shared<const base::FileDescriptor>(std::move(fd));
  }
  return openNext(holder.get(), way->folder(), kListingFlags);
}

base::FileDescriptor FolderOpener::openNext(const base::FileDescriptor* holder, NodeId folder,
                                            int flags) const {
  if (!holder) return openDirectory(tree_.path(folder));
  const std::string name(tree_.name(folder));
  return base::FileDescriptor(
      retryInterrupted([&] { return openat(holder->get(), name.c_str(), flags); }));
}

/// One reader at a time, or two could take each other's last descriptor for ever. It gives up where
/// not even the only one in the walk finds enough.
base::FileDescriptor FolderOpener::openInNeed(FolderWay* way) {
  enterNeed();
  openings_ -= kActive;  // what was kept is closed by now
  base::FileDescriptor fd;
  {
    const base::MutexLock lock(needMutex_);
    while (true) {
      const std::uint64_t before = openings_;
      fd = openWithFewest(way);
      const bool alone = before % kCall == 0 && openings_ == before;
      if (fd.valid() || !outOfDescriptors(errno) || alone || stop_) break;
      gaveBack_.waitUntil(needMutex_, std::chrono::steady_clock::now() + kLookAgain);
    }
    openings_ += kActive;
  }
  leaveNeed();
  return fd;
}

/// From the start, with two descriptors at a time, or with a single one.
base::FileDescriptor FolderOpener::openWithFewest(FolderWay* way) {
  FolderWay whole;
  whole.below.push_back(way->folder());
  while (whole.below.back() != start_) whole.below.push_back(tree_.parent(whole.below.back()));
  base::FileDescriptor fd = openAlong(&whole, Keeping::Forbidden);
  way->opens += whole.opens;
  if (fd.valid() || !outOfDescriptors(errno)) return fd;
  const int error = errno;
  ++way->opens;
  fd = openWholePath(tree_.path(way->folder()));
  errno = error;
  return fd;
}

FolderOpener::Shared FolderOpener::keep(NodeId folder, std::size_t depth, std::size_t unopened,
                                        base::FileDescriptor fd) {
  Shared shared = std::make_shared<const base::FileDescriptor>(std::move(fd));
  std::vector<Kept> closedAfterUnlocking;
  const base::MutexLock lock(mutex_);
  if (inNeed_ > 0 || mostKept_ == 0) return shared;
  if (std::ranges::binary_search(kept_, folder, {}, &Kept::folder)) return shared;
  if (kept_.size() >= mostKept_) closedAfterUnlocking = makeRoom();
  const auto place = std::ranges::lower_bound(kept_, folder, {}, &Kept::folder);
  kept_.insert(place, {folder, depth, unopened, ++uses_, shared});
  return shared;
}

/// Removes and returns the quarter that is worth least: to look for a single one each time would
/// take as long as opening a folder.
std::vector<FolderOpener::Kept> FolderOpener::makeRoom() {
  const auto age = [now = uses_](const Kept& kept) {
    return (now - kept.lastUse) >> strideLogarithm(kept.depth);
  };
  std::vector<std::uint64_t> ages;
  ages.reserve(kept_.size());
  for (const Kept& kept : kept_) ages.push_back(age(kept));
  const auto limit = ages.begin() + static_cast<std::ptrdiff_t>(ages.size() * 3 / 4);
  std::ranges::nth_element(ages, limit);
  const auto old = std::stable_partition(kept_.begin(), kept_.end(),
                                         [&](const Kept& kept) { return age(kept) < *limit; });
  std::vector<Kept> removed(std::make_move_iterator(old), std::make_move_iterator(kept_.end()));
  kept_.erase(old, kept_.end());
  return removed;
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
